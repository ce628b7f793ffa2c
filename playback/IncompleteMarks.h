#pragma once
// A thin strip under the player's position slider with a tick below each
// incomplete frame, lined up with the slider's handle, so that the operator
// sees where in the file revolutions came in with gaps. Frames are 0-based.

#include <QWidget>
#include <vector>

class QSlider;

class IncompleteMarks : public QWidget {
    Q_OBJECT
public:
    static constexpr int kHeight = 4;

    IncompleteMarks(QSlider* slider, QWidget* parent = nullptr);

    // The file holds `count` frames so far; `incomplete` are added to those
    // marked already (the index only grows).
    void setCount(int count);
    void add(const std::vector<qint64>& incomplete);
    void clear();

    const std::vector<qint64>& frames() const { return m_frames; }
    int count() const { return m_count; }
    // The x at which frame `frame` is marked, under the handle's centre.
    int xOf(qint64 frame) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSlider* m_slider;
    std::vector<qint64> m_frames;  // ascending
    int m_count = 0;
};
