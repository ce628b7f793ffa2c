#include "MessageBoxFit.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <QTextDocument>

namespace messagebox {
namespace {

// Room the box needs beside its label: the icon, the margins.
constexpr int kBesideLabel = 100;
// Around a run in the label: the text layout's own margins.
constexpr int kRunMargin = 24;
// Runs up to this wide fit the width the box gives its label anyway.
constexpr int kWrapsWell = 400;

class Fitter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Before the box sizes itself in its own show event.
        if (event->type() == QEvent::Show && watched->isWidgetType()) {
            if (auto* box = qobject_cast<QMessageBox*>(watched))
                fit(box);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    static void fit(QMessageBox* box)
    {
        auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        if (!label)
            return;
        // A path in the box can be copied out of it as it is.
        label->setTextInteractionFlags(label->textInteractionFlags() | Qt::TextSelectableByMouse);
        const QString text = box->text();
        const bool rich = box->textFormat() == Qt::RichText
                          || (box->textFormat() == Qt::AutoText && Qt::mightBeRichText(text));
        if (rich)
            return;
        // The box sizes text that wraps at its spaces well by itself.
        label->ensurePolished();
        const int needed = longestRunWidth(text, label->font()) + kRunMargin;
        if (needed <= kWrapsWell)
            return;
        const QScreen* screen = box->screen() ? box->screen() : QGuiApplication::primaryScreen();
        const int available = screen ? screen->availableGeometry().width() - kBesideLabel : 1000;
        label->setMinimumWidth(std::min(needed, available));
    }
};

}  // namespace

int longestRunWidth(const QString& text, const QFont& font)
{
    const QFontMetrics metrics(font);
    int widest = 0;
    for (const QString& line : text.split(QLatin1Char('\n')))
        for (const QString& run : line.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            widest = std::max(widest, metrics.horizontalAdvance(run));
    return widest;
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
