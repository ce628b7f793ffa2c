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

}  // namespace toolicons
