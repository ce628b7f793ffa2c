#include "SwitchButton.h"

#include <QMouseEvent>
#include <QPainter>

SwitchButton::SwitchButton(QWidget* parent) : QWidget(parent)
{
    setCursor(Qt::PointingHandCursor);
    m_timer.setInterval(m_interval);
    connect(&m_timer, &QTimer::timeout, this, &SwitchButton::onTimeout);
    m_checked = true;
    m_timer.start();
}

void SwitchButton::setChecked(bool checked)
{
    if (checked == m_checked)
        return;
    m_checked = checked;
    m_timer.start();
}

// One pixel per tick; the stop test follows the move, so the knob comes to
// rest one pixel past its end position.
void SwitchButton::onTimeout()
{
    if (m_checked) {
        m_knobX += 1;
        if (m_knobX > m_width - m_height)
            m_timer.stop();
    } else {
        m_knobX -= 1;
        if (m_knobX < 0)
            m_timer.stop();
    }
    update();
}

void SwitchButton::resizeEvent(QResizeEvent* event)
{
    m_height = static_cast<qint16>(height());
    m_width = static_cast<qint16>(width());
    const double travel = m_width - m_height;
    m_interval = travel > 0 ? static_cast<int>(1000 / (travel / 0.3)) : 0;
    m_timer.setInterval(m_interval);
    // A switch not yet on screen (made before its layout sized it, on a page
    // not shown yet) is first seen in its state: its knob rests at the end.
    // One on screen finishes its travel over the new width.
    if (!isVisible()) {
        m_timer.stop();
        m_knobX = m_checked ? m_width - m_height + 1 : -1;
    } else if (m_checked ? m_knobX <= m_width - m_height : m_knobX >= 0) {
        m_timer.start();
    }
    QWidget::resizeEvent(event);
}

void SwitchButton::mousePressEvent(QMouseEvent* event)
{
    if (!isEnabled())
        return;
    if (event->buttons() & Qt::LeftButton)
        event->accept();
    else
        event->ignore();
}

void SwitchButton::mouseReleaseEvent(QMouseEvent* event)
{
    if (!isEnabled())
        return;
    if (event->type() == QEvent::MouseButtonRelease && event->button() == Qt::LeftButton) {
        event->accept();
        m_checked = !m_checked;
        emit toggled(m_checked);
        m_timer.start();
    } else {
        event->ignore();
    }
}

void SwitchButton::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setPen(Qt::NoPen);
    painter.setRenderHint(QPainter::Antialiasing);

    QColor track = m_offBackground;
    QColor knob = m_knob;
    qreal opacity = 0.8;
    if (!isEnabled()) {
        knob = m_disabledKnob;
        opacity = 0.26;
    } else if (m_checked) {
        track = m_onBackground;
        opacity = 0.6;
    }

    painter.setOpacity(opacity);
    painter.setBrush(track);
    painter.drawRoundedRect(QRectF(0, 0, m_width, m_height), m_height / 2.0, m_height / 2.0);

    painter.setOpacity(1.0);
    painter.setBrush(knob);
    painter.drawEllipse(QRectF(m_knobX + m_height * 0.1, m_knobY + m_height * 0.1, m_height * 0.8, m_height * 0.8));

    painter.setPen(Qt::white);
    QFont font(QStringLiteral("Microsoft YaHei"));
    const int pointSize = static_cast<int>(m_height * 0.3);
    if (pointSize > 0)
        font.setPointSize(pointSize);
    painter.setFont(font);
    const int baseline = static_cast<int>(m_height * 0.7);
    if (m_checked)
        painter.drawText(static_cast<int>(m_height * 0.1), baseline, m_onText);
    else
        painter.drawText(m_width - m_height, baseline, m_offText);

    painter.end();
    QWidget::paintEvent(event);
}
