#include "HealthOutput.h"

#include <QLocale>
#include <cmath>

namespace cli {
namespace {

// Shortest text that reads back within the record's precision, C locale.
QString number(double value, int precision = 6)
{
    return QString::number(value, 'g', precision);
}

QString gapText(const lidar::AngularGap& gap)
{
    // ASCII: the terminal's locale may have no degree sign.
    return QStringLiteral("%1-%2 deg").arg(number(gap.start, 5), number(gap.end, 5));
}

}  // namespace

QString frameJson(qint64 number, const lidar::FrameHealth& h)
{
    QStringList gaps;
    for (const lidar::AngularGap& gap : h.gaps)
        gaps << QStringLiteral("[%1, %2]").arg(cli::number(gap.start), cli::number(gap.end));
    return QStringLiteral("{\"frame\": %1, \"packets\": %2, \"missing_packets\": %3, \"coverage\": %4, "
                          "\"gaps\": [%5], \"points\": %6, \"returns\": %7, \"period_ms\": %8, "
                          "\"motor_speed\": %9}")
        .arg(number)
        .arg(h.packets)
        .arg(h.missingPackets)
        .arg(cli::number(h.coverage))
        .arg(gaps.join(QStringLiteral(", ")))
        .arg(h.points)
        .arg(h.returns)
        .arg(h.hasPeriod() ? QString::number(h.periodMs, 'f', 3) : QStringLiteral("null"))  // to the microsecond
        .arg(h.motorSpeed >= 0 ? QString::number(h.motorSpeed) : QStringLiteral("null"));
}

QString frameText(qint64 number, const lidar::FrameHealth& h)
{
    QString line = QStringLiteral("frame %1: ").arg(number);
    if (h.isWhole()) {
        line += QStringLiteral("whole, %1 packets").arg(h.packets);
    } else {
        QStringList gaps;
        for (const lidar::AngularGap& gap : h.gaps)
            gaps << gapText(gap);
        line += QStringLiteral("%1 packets, %2 missing, coverage %3 %, gaps %4")
                    .arg(h.packets)
                    .arg(h.missingPackets)
                    .arg(QString::number(100.0 * h.coverage, 'f', 1), gaps.join(QStringLiteral(", ")));
    }
    line += QStringLiteral("; %1 points, %2 returns, period %3, motor speed %4")
                .arg(h.points)
                .arg(h.returns)
                .arg(h.hasPeriod() ? QStringLiteral("%1 ms").arg(QString::number(h.periodMs, 'f', 3))
                                   : QStringLiteral("unknown"),
                     h.motorSpeed >= 0 ? QStringLiteral("%1 r/min").arg(h.motorSpeed) : QStringLiteral("unknown"));
    return line;
}

void HealthSummary::add(qint64 number, const lidar::FrameHealth& h)
{
    ++frames_;
    if (!h.isWhole())
        ++incomplete_;
    missing_ += h.missingPackets;
    const lidar::AngularGap worst = h.worstGap();
    if (worst.width() > worst_.width()) {
        worst_ = worst;
        worstFrame_ = number;
    }
    if (h.hasPeriod()) {
        ++periods_;
        periodSum_ += h.periodMs;
        periodSquares_ += h.periodMs * h.periodMs;
    }
}

QString HealthSummary::json(const lidar::StreamTotals& totals) const
{
    return QStringLiteral("{\"summary\": {\"frames\": %1, \"incomplete_frames\": %2, \"missing_packets\": %3, "
                          "\"rejected_packets\": %4, \"skipped_bytes\": %5}}")
        .arg(frames_)
        .arg(incomplete_)
        .arg(missing_)
        .arg(totals.rejectedPackets)
        .arg(totals.skippedBytes);
}

QStringList HealthSummary::lines(const lidar::StreamTotals& totals) const
{
    QStringList lines;
    lines << QStringLiteral("whole frames:      %1").arg(frames_ - incomplete_)
          << QStringLiteral("incomplete frames: %1").arg(incomplete_)
          << QStringLiteral("missing packets:   %1").arg(missing_);
    if (worst_.width() > 0.0f)
        lines << QStringLiteral("worst gap:         %1 deg at %2 (frame %3)")
                     .arg(number(worst_.width(), 4), gapText(worst_))
                     .arg(worstFrame_);
    lines << QStringLiteral("rejected packets:  %1").arg(totals.rejectedPackets)
          << QStringLiteral("skipped bytes:     %1").arg(totals.skippedBytes);
    if (periods_ > 0) {
        const double mean = periodSum_ / double(periods_);
        const double spread = std::sqrt(std::max(0.0, periodSquares_ / double(periods_) - mean * mean));
        lines << QStringLiteral("revolution period: %1 ms mean, %2 ms spread (%3 frames)")
                     .arg(QString::number(mean, 'f', 3), QString::number(spread, 'f', 3))
                     .arg(periods_);
    } else {
        lines << QStringLiteral("revolution period: unknown (no GPS time in the packets)");
    }
    return lines;
}

}  // namespace cli
