#pragma once
// Draws the grid and polar overlays into the 3D view from the state the
// main window keeps in its IGridPolar part. Every redraw first removes what
// the last one added (by the ids listed in that state, and the rings this
// painter keeps), so switching an overlay on twice leaves no duplicates.
//
// Each part of an overlay (the grid's lines, the grid's labels, the rings,
// the polar labels) is drawn by one actor, registered in the view under the
// id of every line or label it draws: the view answers for each id and
// removes by id as usual, and a render costs four actors instead of nearly
// two hundred. Removing any one id takes its whole part out of the view, so
// the painter removes a part's ids together.

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

    // The actors drawing the rings now in the view: one for all of them
    // while the polar overlay is on, none while it is off.
    const std::vector<vtkSmartPointer<vtkActor>>& polarRings() const { return m_polarRings; }

private:
    pcl::visualization::PCLVisualizer& m_viewer;
    std::vector<vtkSmartPointer<vtkActor>> m_polarRings;
};
