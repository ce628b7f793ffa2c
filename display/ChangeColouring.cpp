#include "ChangeColouring.h"

#include <QCoreApplication>

namespace display {

Rgb changeColour(ChangeClass change)
{
    switch (change) {
    case ChangeClass::Nearer: return {255, 48, 48};
    case ChangeClass::Farther: return {48, 128, 255};
    case ChangeClass::Within: return {170, 170, 170};
    case ChangeClass::NotCompared: break;
    }
    return {80, 80, 80};
}

ColourLegend changeLegend(double toleranceM)
{
    const QString centimetres = QString::number(toleranceM * 100.0, 'g', 4);
    ColourLegend legend;
    legend.swatches.append({changeColour(ChangeClass::Nearer),
                            QCoreApplication::translate("ColourLegend", "nearer by more than %1 cm").arg(centimetres)});
    legend.swatches.append({changeColour(ChangeClass::Within),
                            QCoreApplication::translate("ColourLegend", "within ±%1 cm").arg(centimetres)});
    legend.swatches.append(
        {changeColour(ChangeClass::Farther),
         QCoreApplication::translate("ColourLegend", "farther by more than %1 cm").arg(centimetres)});
    return legend;
}

}  // namespace display
