#pragma once
// Where the grid and polar overlays put their lines, rings and labels, and
// under which ids. Both lie in the ground plane z = 0, centred on the lidar,
// and reach out to count x step centimetres; the view works in metres.
//
// Grid lines are named after their offset in metres ("GridLineY-20.000000"),
// labels after their offset in centimetres ("right_grid100"). The grid's
// labels stop one step short of its outermost line; the polar labels reach
// the outermost ring, and the innermost ring has radius 0.

#include <QString>
#include <vector>

namespace overlay {

struct Line {
    QString id;
    float from[3];
    float to[3];
};

struct Label {
    QString id;
    QString text;
    float position[3];
    double scale;
};

// Lines at every multiple of the step from -extent to +extent: for each
// offset a line along y ("GridLineY...") then one along x ("GridLineX...").
std::vector<Line> gridLines(int count, int step);
// For each offset i inside the extent: "iCM" at +i on the y axis, then
// "-iCM" at -i.
std::vector<Label> gridLabels(int count, int step);
// Ring radii in metres, from the innermost (0) to the extent.
std::vector<double> polarRadii(int count, int step);
// For each radius u > 0 up to the extent: "uCM" at +u on the x axis, then
// "-uCM" at -u.
std::vector<Label> polarLabels(int count, int step);

}  // namespace overlay
