#include "ProgressLine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace cli {
namespace {

// Back to the start of the line, and the rest of it erased.
constexpr const char* kReturn = "\r";
constexpr const char* kEraseToEnd = "\033[K";

}  // namespace

ProgressLine::ProgressLine(bool quiet) : enabled_(!quiet && isatty(STDERR_FILENO))
{
    started_.start();
}

ProgressLine::~ProgressLine()
{
    clear();
}

QString ProgressLine::text(double fraction, qint64 frames, double framesPerSecond)
{
    const int percent = int(std::floor(std::clamp(fraction, 0.0, 1.0) * 100.0));
    return QStringLiteral("scandeck-cli: %1% read, %2 frame%3, %4 frames/s")
        .arg(percent)
        .arg(frames)
        .arg(frames == 1 ? "" : "s")
        .arg(qint64(std::llround(framesPerSecond)));
}

void ProgressLine::update(double fraction, qint64 frames)
{
    if (!enabled_)
        return;
    const qint64 now = started_.elapsed();
    if (shown_ && now - drawnAtMs_ < kRedrawMs)
        return;
    const double seconds = std::max(now, qint64(1)) / 1000.0;
    std::fprintf(stderr, "%s%s%s", kReturn, text(fraction, frames, frames / seconds).toLocal8Bit().constData(),
                 kEraseToEnd);
    std::fflush(stderr);
    shown_ = true;
    drawnAtMs_ = now;
}

void ProgressLine::clear()
{
    if (!shown_)
        return;
    std::fprintf(stderr, "%s%s", kReturn, kEraseToEnd);
    std::fflush(stderr);
    shown_ = false;
}

}  // namespace cli
