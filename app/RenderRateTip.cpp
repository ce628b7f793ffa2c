#include "RenderRateTip.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

RenderRateTip::RenderRateTip(QWidget* view) : QObject(view), m_view(view)
{
    view->installEventFilter(this);
}

QRect RenderRateTip::figureArea(const QWidget* view)
{
    // "1234.5 FPS" in the viewer's 12-pixel text, with room to spare.
    constexpr int kWidth = 110;
    constexpr int kHeight = 22;
    return QRect(0, view->height() - kHeight, kWidth, kHeight);
}

QString RenderRateTip::text()
{
    return tr("FPS: how many times per second the view is drawn. The lidar's own rate (frames/s) is in the "
              "link status at the bottom of the window.");
}

bool RenderRateTip::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_view && event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        if (figureArea(m_view).contains(help->pos()))
            QToolTip::showText(help->globalPos(), text(), m_view, figureArea(m_view));
        else
            QToolTip::hideText();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
