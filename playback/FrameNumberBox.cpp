#include "FrameNumberBox.h"

#include <QLineEdit>
#include <QRegularExpression>

namespace {
// Red while the text cannot be a frame; applied here so that it shows with
// or without the program's style sheet.
const char* const kOutOfRangeStyle = "QSpinBox { border: 1px solid #D93025; background-color: #FDECEA; }";
}  // namespace

FrameNumberBox::FrameNumberBox(QWidget* parent) : QSpinBox(parent)
{
    connect(lineEdit(), &QLineEdit::textChanged, this, &FrameNumberBox::judgeText);
    connect(this, QOverload<int>::of(&QSpinBox::valueChanged), this, &FrameNumberBox::judgeText);
}

QValidator::State FrameNumberBox::validate(QString& input, int& pos) const
{
    const QValidator::State state = QSpinBox::validate(input, pos);
    if (state != QValidator::Invalid)
        return state;
    // Digits beyond the range stay in the box, to be refused on Enter.
    static const QRegularExpression digits(QStringLiteral("^\\s*\\d+\\s*$"));
    QString number = input;
    if (number.startsWith(prefix()))
        number.remove(0, prefix().size());
    if (number.endsWith(suffix()))
        number.chop(suffix().size());
    return digits.match(number).hasMatch() ? QValidator::Intermediate : QValidator::Invalid;
}

void FrameNumberBox::resetTo(int frame)
{
    setValue(frame);
    lineEdit()->setText(textFromValue(value()));
    judgeText();
}

void FrameNumberBox::judgeText()
{
    bool isNumber = false;
    const int typed = cleanText().toInt(&isNumber);
    const bool outOfRange = isEnabled() && !cleanText().isEmpty() && (!isNumber || typed < minimum() || typed > maximum());
    if (outOfRange == m_outOfRange)
        return;
    m_outOfRange = outOfRange;
    setStyleSheet(outOfRange ? QLatin1String(kOutOfRangeStyle) : QString());
    setToolTip(outOfRange ? tr("No frame %1: enter a number from %2 to %3").arg(cleanText()).arg(minimum()).arg(maximum())
                          : QString());
    emit outOfRangeChanged(outOfRange);
}
