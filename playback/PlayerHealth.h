#pragma once
// The health of the player's frames: a short text for the frame shown
// beside the frame box ("whole · 42 packets", "3 packets missing · gap
// 120–150°"), the ticks of the incomplete frames under the slider, and
// where the next or previous incomplete frame is (N, Shift+N). It reads the
// source's health index as it grows, so it works while indexing.

#include "FrameHealth.h"

#include <QCoreApplication>
#include <QtGlobal>

class IncompleteMarks;
class PlayerFrames;
class QLabel;
class QSlider;
class QWidget;

class PlayerHealth {
    Q_DECLARE_TR_FUNCTIONS(OffinePlayWidget)
public:
    PlayerHealth(QSlider* slider, QWidget* parent);

    QLabel* label() const { return m_label; }
    IncompleteMarks* marks() const { return m_marks; }
    // The slider with the ticks under it, to take the slider's place.
    QWidget* sliderColumn() const { return m_column; }

    // The frames now played (null: none); the marks start afresh.
    void setSource(const PlayerFrames* frames);
    // The index has reached `count` frames.
    void follow(int count);
    // The frame just read from the source; false with a default health when
    // the source keeps none.
    bool frameRead(const PlayerFrames& frames, lidar::FrameHealth& health);
    // The 0-based frame of the next / previous incomplete frame from frame
    // `frame` (0-based) below `count`, or -1.
    qint64 nextIncomplete(qint64 frame, int count) const;
    qint64 previousIncomplete(qint64 frame) const;

    static QString describe(const lidar::FrameHealth& health);

private:
    const PlayerFrames* m_frames = nullptr;
    QWidget* m_column;
    QLabel* m_label;
    IncompleteMarks* m_marks;
    qint64 m_markedUpTo = -1;  // frames below this are marked
};
