#include "PlayerHealth.h"

#include "HealthIndex.h"
#include "IncompleteMarks.h"
#include "PlayerFrames.h"

#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {

QString degrees(float value)
{
    return QString::number(std::lround(value));
}

}  // namespace

PlayerHealth::PlayerHealth(QSlider* slider, QWidget* parent)
    : m_column(new QWidget(parent)), m_label(new QLabel(parent)), m_marks(new IncompleteMarks(slider, m_column))
{
    auto* column = new QVBoxLayout(m_column);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(slider);
    column->addWidget(m_marks);
    m_column->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_label->setObjectName(QStringLiteral("label_frame_health"));
}

void PlayerHealth::setSource(const PlayerFrames* frames)
{
    m_frames = frames;
    m_markedUpTo = -1;
    m_marks->clear();
    m_label->clear();
    m_label->setVisible(frames && frames->healthIndex());
}

void PlayerHealth::follow(int count)
{
    m_marks->setCount(count);
    const lidar::HealthIndex* index = m_frames ? m_frames->healthIndex() : nullptr;
    // The health of the last frames counted may follow a moment later.
    const qint64 upTo = index ? std::min<qint64>(count, index->size()) : 0;
    if (!index || upTo <= m_markedUpTo)
        return;
    m_marks->add(index->incompleteFrames(std::max<qint64>(0, m_markedUpTo), upTo - 1));
    m_markedUpTo = upTo;
}

bool PlayerHealth::frameRead(const PlayerFrames& frames, lidar::FrameHealth& health)
{
    health = lidar::FrameHealth();
    const bool known = frames.lastHealth(health);
    if (!known)
        health = lidar::FrameHealth();
    m_label->setText(known ? describe(health) : QString());
    return known;
}

qint64 PlayerHealth::nextIncomplete(qint64 frame, int count) const
{
    const lidar::HealthIndex* index = m_frames ? m_frames->healthIndex() : nullptr;
    const qint64 next = index ? index->nextIncomplete(frame) : -1;
    return next >= 0 && next < count ? next : -1;
}

qint64 PlayerHealth::previousIncomplete(qint64 frame) const
{
    const lidar::HealthIndex* index = m_frames ? m_frames->healthIndex() : nullptr;
    const qint64 previous = index ? index->previousIncomplete(frame) : -1;
    return previous >= 0 ? previous : -1;
}

QString PlayerHealth::describe(const lidar::FrameHealth& health)
{
    if (health.isWhole())
        return health.packets == 1 ? tr("whole · 1 packet") : tr("whole · %1 packets").arg(health.packets);
    const QString missing = health.missingPackets == 1 ? tr("1 packet missing")
                            : health.missingPackets > 1 ? tr("%1 packets missing").arg(health.missingPackets)
                                                        : tr("incomplete");
    const lidar::AngularGap worst = health.worstGap();
    const QString span = QStringLiteral("%1–%2°").arg(degrees(worst.start), degrees(worst.end));
    if (health.gaps.size() == 1)
        return tr("%1 · gap %2").arg(missing, span);
    return tr("%1 · %2 gaps, widest %3").arg(missing).arg(health.gaps.size()).arg(span);
}
