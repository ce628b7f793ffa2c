#pragma once
// The grid and the polar rings as overlays: each switches its part of the
// shared grid-and-polar state (IGridPolar, which the settings dialog edits)
// and has the painter draw it anew.

#include "IGridPolar.h"
#include "ViewOverlay.h"

#include <functional>

class OverlayPainter;

class GridOverlay : public ViewOverlay {
public:
    GridOverlay(OverlayPainter& painter, IGridPolar& state, int count, std::function<void()> render)
        : m_painter(painter), m_state(state), m_count(count), m_render(std::move(render))
    {
    }
    bool isOn() const override { return m_state.gridShown; }
    void setOn(bool on) override;

private:
    OverlayPainter& m_painter;
    IGridPolar& m_state;
    int m_count;  // the grid reaches count x step
    std::function<void()> m_render;
};

class PolarOverlay : public ViewOverlay {
public:
    PolarOverlay(OverlayPainter& painter, IGridPolar& state, int count, std::function<void()> render)
        : m_painter(painter), m_state(state), m_count(count), m_render(std::move(render))
    {
    }
    bool isOn() const override { return m_state.polarShown; }
    void setOn(bool on) override;

private:
    OverlayPainter& m_painter;
    IGridPolar& m_state;
    int m_count;  // the rings reach count x step
    std::function<void()> m_render;
};
