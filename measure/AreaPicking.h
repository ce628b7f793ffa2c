#pragma once
// The 3D view's rubber-band selection. The viewer's interactor style
// switches between turning the camera and dragging a selection rectangle on
// the key "x"; the key is handed to the interactor directly, so the user's
// keyboard layout plays no part and nothing goes through the desktop.

class vtkRenderWindowInteractor;

namespace measure {

// True while a left drag in the view selects an area.
bool isAreaPicking(vtkRenderWindowInteractor* interactor);

// Switches the selection mode on or off; nothing happens when it already is.
void setAreaPicking(vtkRenderWindowInteractor* interactor, bool on);

}  // namespace measure
