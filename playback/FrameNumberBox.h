#pragma once
// The player's frame number box. A plain QSpinBox silently drops keystrokes
// that would leave its range, so typing 999 into a box of 1..12 leaves "9"
// and Enter would jump to frame 9. This box keeps whatever number is typed,
// marks it in red while it is out of range, and leaves the verdict to the
// player when Enter is pressed.

#include <QSpinBox>

class FrameNumberBox : public QSpinBox {
    Q_OBJECT
    Q_PROPERTY(bool outOfRange READ isOutOfRange NOTIFY outOfRangeChanged)
public:
    explicit FrameNumberBox(QWidget* parent = nullptr);

    // The text is a number outside the range (or no number at all).
    bool isOutOfRange() const { return m_outOfRange; }
    // Shows `frame` again after a refused entry. (setValue alone does not
    // rewrite the text when the value itself has not changed.)
    void resetTo(int frame);

signals:
    void outOfRangeChanged(bool outOfRange);

protected:
    QValidator::State validate(QString& input, int& pos) const override;

private:
    void judgeText();

    bool m_outOfRange = false;
};
