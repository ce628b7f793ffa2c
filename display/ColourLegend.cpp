#include "ColourLegend.h"

#include <QCoreApplication>

namespace display {

ColourLegend colourLegend(int mode)
{
    ColourLegend legend;
    switch (mode) {
    case IntensityColours:
        for (int intensity = 0; intensity <= 255; ++intensity)
            legend.ramp.append(intensityColour(intensity));
        legend.rampTicks = {0, 32, 64, 128, 255};
        break;
    case AzimuthColours:
        for (int from = 0; from < 360; from += 90)
            legend.swatches.append({azimuthColour(from + 45.0f), QStringLiteral("%1° – %2°").arg(from).arg(from + 90)});
        break;
    case SolidColour:
        legend.swatches.append({{255, 255, 255}, QCoreApplication::translate("ColourLegend", "every point")});
        break;
    default:
        break;
    }
    return legend;
}

}  // namespace display
