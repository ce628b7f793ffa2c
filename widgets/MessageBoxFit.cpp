#include "MessageBoxFit.h"

#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QTextDocument>

namespace messagebox {
namespace {

constexpr QChar kZeroWidthSpace(0x200B);

bool isSeparator(QChar c)
{
    return c == QLatin1Char('/') || c == QLatin1Char('\\');
}

// Long runs only: "0x200B" in every short word would be noise when the
// user copies the text.
bool hasLongRun(const QString& text)
{
    int run = 0;
    for (QChar c : text) {
        run = (c.isSpace() || c == kZeroWidthSpace) ? 0 : run + 1;
        if (run > kMaxRun)
            return true;
    }
    return false;
}

class Fitter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Before the box sizes itself in its own show event.
        if (event->type() == QEvent::Show && watched->isWidgetType()) {
            if (auto* box = qobject_cast<QMessageBox*>(watched)) {
                const QString text = box->text();
                const bool rich = box->textFormat() == Qt::RichText
                                  || (box->textFormat() == Qt::AutoText && Qt::mightBeRichText(text));
                if (!rich && hasLongRun(text))
                    box->setText(breakableText(text));
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

}  // namespace

QString breakableText(const QString& text)
{
    if (!hasLongRun(text))
        return text;
    QString out;
    out.reserve(text.size() + text.size() / kMaxRun * 2);
    int run = 0;
    for (QChar c : text) {
        out += c;
        if (c.isSpace() || c == kZeroWidthSpace) {
            run = 0;
            continue;
        }
        ++run;
        if (isSeparator(c) || run >= kMaxRun) {
            out += kZeroWidthSpace;
            run = 0;
        }
    }
    return out;
}

void fitAllMessageBoxes()
{
    static Fitter* fitter = nullptr;
    if (fitter || !qApp)
        return;
    fitter = new Fitter(qApp);
    qApp->installEventFilter(fitter);
}

}  // namespace messagebox
