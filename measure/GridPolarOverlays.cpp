#include "GridPolarOverlays.h"

#include "OverlayPainter.h"

void GridOverlay::setOn(bool on)
{
    m_state.gridShown = on;
    m_painter.redrawGrid(m_state, m_count);
    m_render();
}

void PolarOverlay::setOn(bool on)
{
    m_state.polarShown = on;
    m_painter.redrawPolar(m_state, m_count);
    m_render();
}
