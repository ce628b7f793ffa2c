#pragma once
// The Change colouring: points coloured by how their range differs from the
// reference in their direction, and its legend. It stands beside the colour
// modes of the colour box, not among them: the reference tool switches it on.

#include "ChangeComparison.h"
#include "ColourLegend.h"

namespace display {

// Nearer red (something came in), farther blue (something went away),
// within grey so that the changes stand out; points not compared dark grey.
Rgb changeColour(ChangeClass change);

// The three classes with the tolerance in centimetres:
// "nearer by more than 5 cm", "within ±5 cm", "farther by more than 5 cm".
ColourLegend changeLegend(double toleranceM);

}  // namespace display
