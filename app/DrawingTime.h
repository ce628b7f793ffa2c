#pragma once
// How long drawing a live frame takes these days: the median of the last
// few drawings, so that one slow drawing (the first after connecting, which
// sets the view up; a window being resized) does not pass for the rule.

#include <QtGlobal>

#include <array>

class DrawingTime {
public:
    static constexpr int kKept = 5;
    // Fewer drawings than this say nothing yet.
    static constexpr int kNeeded = 3;

    void add(qint64 ns);
    void clear() { count_ = 0; }
    bool known() const { return count_ >= kNeeded; }
    // The median of the drawings kept; 0 while none is.
    qint64 typicalNs() const;

private:
    std::array<qint64, kKept> recent_{};
    int count_ = 0;  // drawings added, up to kKept
    int next_ = 0;   // where the next one goes
};
