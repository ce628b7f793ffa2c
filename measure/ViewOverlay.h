#pragma once
// Something drawn over the frame in the 3D view (the grid, the polar rings,
// the ranging marks, the selection box, the colour legend): one object that
// owns its state, its drawing and its switch. The window keeps a list of
// them, tells each about every frame shown and about a cleared view, and
// knows nothing of what they draw.

namespace display {
struct FrameView;
}

class ViewOverlay {
public:
    virtual ~ViewOverlay() = default;

    virtual bool isOn() const = 0;
    virtual void setOn(bool on) = 0;
    // A frame went through the display pipeline and is being drawn.
    virtual void frameShown(const display::FrameView& /*view*/) {}
    // The view was emptied (Clear, a disconnect): nothing of it is drawn now.
    virtual void viewCleared() {}
};
