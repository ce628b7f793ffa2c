#include "IncompleteMarks.h"

#include <QPainter>
#include <QSlider>
#include <QStyle>
#include <algorithm>

IncompleteMarks::IncompleteMarks(QSlider* slider, QWidget* parent) : QWidget(parent), m_slider(slider)
{
    setObjectName(QStringLiteral("incomplete_marks"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void IncompleteMarks::setCount(int count)
{
    if (count == m_count)
        return;
    m_count = count;
    update();
}

void IncompleteMarks::add(const std::vector<qint64>& incomplete)
{
    if (incomplete.empty())
        return;
    m_frames.insert(m_frames.end(), incomplete.begin(), incomplete.end());
    update();
}

void IncompleteMarks::clear()
{
    m_frames.clear();
    m_count = 0;
    update();
}

int IncompleteMarks::xOf(qint64 frame) const
{
    // The handle's centre travels from half a handle in to half a handle
    // before the end; the slider counts frames from 1.
    const int handle = m_slider->style()->pixelMetric(QStyle::PM_SliderLength, nullptr, m_slider);
    const int span = std::max(1, width() - handle);
    const int last = std::max(1, m_count);
    const int value = int(std::min<qint64>(frame + 1, last));
    return handle / 2 + QStyle::sliderPositionFromValue(1, last, value, span);
}

QSize IncompleteMarks::sizeHint() const
{
    return QSize(m_slider->sizeHint().width(), kHeight);
}

QSize IncompleteMarks::minimumSizeHint() const
{
    return QSize(0, kHeight);
}

void IncompleteMarks::paintEvent(QPaintEvent* /*event*/)
{
    if (m_frames.empty() || m_count == 0)
        return;
    QPainter painter(this);
    painter.setPen(QColor(0xD9, 0x30, 0x25));
    // Many frames share a pixel in a long file: each column is drawn once.
    int lastX = -1;
    for (const qint64 frame : m_frames) {
        if (frame >= m_count)
            break;
        const int x = xOf(frame);
        if (x != lastX)
            painter.drawLine(x, 0, x, height() - 1);
        lastX = x;
    }
}
