#pragma once
// The window's moving parts: the camera's preset views, the point table
// pane sliding open or shut, and a page of the side panel dropping in.

class QSplitter;
class QTabWidget;
class vtkRenderer;

namespace viewmotions {

enum class CameraView { Top, Left, Right, Front };

// Places the camera for a preset view and fits the scene in it.
void setCameraView(vtkRenderer* renderer, CameraView view);
// The first pane of `splitter` slides open (to 520 pixels, at most two
// fifths of the window) or shut over a few steps, the window staying live.
void slideTablePane(QSplitter* splitter, bool open);
// The page drops in from above and settles with a small overshoot.
void slideInPage(QTabWidget* tabs, int index);

}  // namespace viewmotions
