#include "DrawingTime.h"

#include <algorithm>

void DrawingTime::add(qint64 ns)
{
    recent_[size_t(next_)] = ns;
    next_ = (next_ + 1) % kKept;
    count_ = std::min(count_ + 1, kKept);
}

qint64 DrawingTime::typicalNs() const
{
    if (count_ == 0)
        return 0;
    std::array<qint64, kKept> sorted = recent_;
    std::sort(sorted.begin(), sorted.begin() + count_);
    return sorted[size_t(count_ / 2)];
}
