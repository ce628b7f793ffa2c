#pragma once
// The view's "FPS" figure (bottom left, drawn by the point cloud viewer)
// counts how often the view is drawn, not the lidar's revolutions. Hovering
// over it shows a tooltip that says so; elsewhere the view shows no tooltip.

#include <QObject>
#include <QRect>

class QWidget;

class RenderRateTip : public QObject {
    Q_OBJECT
public:
    // The corner of the view the figure occupies, in view pixels.
    static QRect figureArea(const QWidget* view);

    explicit RenderRateTip(QWidget* view);
    static QString text();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_view;
};
