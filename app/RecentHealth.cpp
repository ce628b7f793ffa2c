#include "RecentHealth.h"

#include <QStringList>
#include <cmath>

namespace {

// Tenths of a degree, without ".0".
QString degrees(double value)
{
    const double tenths = std::round(value * 10.0) / 10.0;
    return QString::number(tenths, 'f', tenths == std::floor(tenths) ? 0 : 1);
}

bool isGap(const lidar::AngularGap& gap)
{
    return gap.width() > 0.0f;
}

}  // namespace

void RecentHealth::addFrame(const lidar::FrameHealth& health)
{
    lidar::AngularGap worst = health.worstGap();
    // An incomplete revolution always counts, even if its gap rounds to nothing.
    if (!health.isWhole() && !isGap(worst))
        worst.end = worst.start + 0.01f;
    m_worst.push_back(health.isWhole() ? lidar::AngularGap() : worst);
    m_incomplete += health.isWhole() ? 0 : 1;
    if (int(m_worst.size()) > kRevolutions) {
        m_incomplete -= isGap(m_worst.front()) ? 1 : 0;
        m_worst.pop_front();
    }
}

void RecentHealth::setLastSecond(quint64 rejectedPackets, quint64 skippedBytes)
{
    m_rejected = rejectedPackets;
    m_skipped = skippedBytes;
}

void RecentHealth::reset()
{
    *this = RecentHealth();
}

QString RecentHealth::gapText(const lidar::AngularGap& gap)
{
    return tr("%1° at %2–%3°").arg(degrees(gap.width()), degrees(gap.start), degrees(gap.end));
}

QString RecentHealth::reason() const
{
    QStringList parts;
    if (m_incomplete > 0) {
        const lidar::AngularGap* worst = &m_worst.front();
        for (const lidar::AngularGap& gap : m_worst)
            if (gap.width() > worst->width())
                worst = &gap;
        parts << tr("%1 of the last %2 revolutions incomplete, worst gap %3")
                     .arg(m_incomplete)
                     .arg(m_worst.size())
                     .arg(gapText(*worst));
    }
    if (m_rejected > 0)
        parts << (m_rejected == 1 ? tr("1 packet rejected in the last second")
                                  : tr("%1 packets rejected in the last second").arg(m_rejected));
    else if (m_skipped > 0)
        parts << (m_skipped == 1 ? tr("1 byte skipped in the last second")
                                 : tr("%1 bytes skipped in the last second").arg(m_skipped));
    return parts.join(QStringLiteral("; "));
}
