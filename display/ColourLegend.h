#pragma once
// What the colour legend of the view shows for a colour mode, taken from the
// colouring itself so that it can never disagree with the points: the
// intensity ramp (one colour per value 0..255, wrap-arounds included) with
// its band edges as ticks, the four azimuth quadrants with their angle
// ranges, or the one colour of the solid mode.

#include "PointColouring.h"

#include <QString>
#include <QVector>

namespace display {

struct LegendSwatch {
    Rgb colour;
    QString label;
};

struct ColourLegend {
    QVector<Rgb> ramp;               // intensity 0..255, empty for the other modes
    QVector<int> rampTicks;          // intensities labelled under the ramp
    QVector<LegendSwatch> swatches;  // one per colour band
    bool isEmpty() const { return ramp.isEmpty() && swatches.isEmpty(); }
};

// An unknown mode (points drawn black) has no legend.
ColourLegend colourLegend(int mode);

}  // namespace display
