#pragma once
// Draws the grid and polar overlays into the 3D view from the state the
// main window keeps in its IGridPolar part. Every redraw first removes what
// the last one added (by the ids listed in that state, and the rings this
// painter keeps), so switching an overlay on twice leaves no duplicates.

#include "IGridPolar.h"

#include <vector>
#include <vtkSmartPointer.h>

class vtkActor;

namespace pcl {
namespace visualization {
class PCLVisualizer;
}
}  // namespace pcl

class OverlayPainter {
public:
    explicit OverlayPainter(pcl::visualization::PCLVisualizer& viewer);
    ~OverlayPainter();

    // Removes the grid now drawn and, if state.gridShown, draws it anew with
    // the state's step and colour, reaching count x step.
    void redrawGrid(IGridPolar& state, int count);
    void redrawPolar(IGridPolar& state, int count);

    // The rings now in the view (for tests).
    const std::vector<vtkSmartPointer<vtkActor>>& polarRings() const { return m_polarRings; }

private:
    pcl::visualization::PCLVisualizer& m_viewer;
    std::vector<vtkSmartPointer<vtkActor>> m_polarRings;
};
