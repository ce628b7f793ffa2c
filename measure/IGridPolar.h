#pragma once
// How the grid and polar settings dialog reaches the main window: it edits
// the overlay state held here and asks for a redraw through the two
// operations. The base versions only remember the requested state.

#include <QColor>
#include <QStringList>

class IGridPolar {
public:
    virtual void showGrid(bool on) { gridShown = on; }
    virtual void showPolar(bool on) { polarShown = on; }

    QColor overlayColour{204, 204, 204, 255};  // lines, circles and labels of both overlays
    bool gridShown = false;
    bool polarShown = false;
    int gridStep = 100;   // cm
    int polarStep = 100;  // cm
    QStringList gridLabelIds;   // 3D texts of the grid now in the view
    QStringList polarLabelIds;  // 3D texts of the polar overlay now in the view
    QStringList gridLineIds;    // line shapes of the grid now in the view

protected:
    ~IGridPolar() = default;
};
