#pragma once
// How far a long command got, on one line of standard error that is redrawn
// in place: "scandeck-cli: 42% read, 2520 frames, 5040 frames/s". Drawn at
// the first frame and then a few times a second, and cleared at the end
// (by clear() or on destruction) so that what the command prints afterwards
// starts on a clean line. Nothing at all when standard error is no terminal
// (a pipe, a file, a log) or when the command is asked to be quiet.

#include <QElapsedTimer>
#include <QString>

namespace cli {

class ProgressLine {
public:
    explicit ProgressLine(bool quiet);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    bool enabled() const { return enabled_; }
    // `fraction` of the input read (0 to 1), `frames` decoded so far.
    void update(double fraction, qint64 frames);
    void clear();

    // The line's text.
    static QString text(double fraction, qint64 frames, double framesPerSecond);

private:
    static constexpr qint64 kRedrawMs = 250;

    bool enabled_;
    bool shown_ = false;
    QElapsedTimer started_;
    qint64 drawnAtMs_ = 0;
};

}  // namespace cli
