#include "ToolIcons.h"

#include <QPainter>
#include <QPixmap>
#include <QtMath>

namespace toolicons {
namespace {

constexpr int kSize = 48;  // drawn at twice the 24 px the column shows

template <typename Draw>
QIcon drawn(Draw draw)
{
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(70, 140, 210), 4));
    draw(painter);
    return QIcon(pixmap);
}

}  // namespace

QIcon reference()
{
    return drawn([](QPainter& p) {
        p.drawEllipse(QPointF(24, 24), 19, 19);
        p.drawEllipse(QPointF(24, 24), 9, 9);
        p.setBrush(p.pen().color());
        p.drawEllipse(QPointF(24, 24), 2, 2);
    });
}

QIcon statistics()
{
    return drawn([](QPainter& p) {
        p.setBrush(p.pen().color());
        const int heights[] = {14, 30, 22, 38};
        for (int i = 0; i < 4; ++i)
            p.drawRect(QRect(6 + i * 10, 44 - heights[i], 5, heights[i]));
    });
}

QIcon sectors()
{
    return drawn([](QPainter& p) {
        p.drawEllipse(QPointF(24, 24), 19, 19);
        for (int i = 0; i < 6; ++i) {
            const double a = qDegreesToRadians(60.0 * i);
            p.drawLine(QPointF(24, 24), QPointF(24 + 19 * std::sin(a), 24 - 19 * std::cos(a)));
        }
    });
}

// An amber sector cut out of a grey ring.
QIcon gaps()
{
    return drawn([](QPainter& p) {
        p.setPen(QPen(QColor(0x60, 0x60, 0x60), 3));
        p.drawArc(QRectF(6, 6, 36, 36), 135 * 16, 270 * 16);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0xF9, 0xA8, 0x25, 200));
        p.drawPie(QRectF(6, 6, 36, 36), 45 * 16, 90 * 16);
    });
}

// A small green line chart on grey axes.
QIcon chart()
{
    return drawn([](QPainter& p) {
        p.setPen(QPen(QColor(0x60, 0x60, 0x60), 3));
        p.drawPolyline(QPolygonF({QPointF(6, 8), QPointF(6, 42), QPointF(42, 42)}));
        p.setPen(QPen(QColor(0x1E, 0x7D, 0x32), 3));
        p.drawPolyline(
            QPolygonF({QPointF(10, 30), QPointF(18, 22), QPointF(26, 28), QPointF(32, 14), QPointF(42, 18)}));
    });
}

}  // namespace toolicons
