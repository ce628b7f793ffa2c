// How the window reads with the style sheet we ship: every message box shows
// its whole text (a 200-character path with and without separators, in
// English and Chinese, ours and Qt's own), and every checkable button shows
// its icon unchecked, checked and disabled.

#include "tst_scandeck_support.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTextLayout>
#include <QTimer>
#include <QToolButton>
#include <QTranslator>

using namespace testing;

namespace {

// No line of the text, laid out as the label lays it out, is wider than the
// label, and the label is as high as it says its wrapped text needs.
QString fitProblem(const QLabel* label)
{
    const int width = label->contentsRect().width();
    QString text = label->text();
    text.replace(QLatin1Char('\n'), QChar::LineSeparator);
    QTextLayout layout(text, label->font());
    QTextOption option;
    option.setWrapMode(label->wordWrap() ? QTextOption::WordWrap : QTextOption::ManualWrap);
    layout.setTextOption(option);
    qreal widest = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        widest = std::max(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    const int height = label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
    if (widest > width || height > label->height())
        return QStringLiteral("text needs %1x%2, label has %3x%4").arg(widest).arg(height).arg(width).arg(label->height());
    return QString();
}

// Shows the box that `show` opens (modal), inspects it from a timer and closes it.
QString inspectMessageBox(const std::function<void()>& show, QString* labelText)
{
    QString problem = QStringLiteral("no message box appeared");
    QTimer poll;
    poll.setInterval(20);
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        const QLabel* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        *labelText = label->text();
        problem = fitProblem(label);
        box->done(0);
    });
    poll.start();
    QTimer::singleShot(10000, [] {  // never wait for a click
        if (QWidget* stuck = QApplication::activeModalWidget())
            stuck->close();
    });
    show();
    return problem;
}

}  // namespace

class WindowLookTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase() { QApplication::removeTranslator(&m_chinese); }
    void messageBoxShowsWholeText_data();
    void messageBoxShowsWholeText();
    void checkableButtonsShowIcons_data();
    void checkableButtonsShowIcons();

private:
    QTranslator m_chinese;
};

void WindowLookTest::initTestCase()
{
    QFile sheet(QStringLiteral("qss/MacOS.qss"));
    QVERIFY(sheet.open(QIODevice::ReadOnly));
    qApp->setStyleSheet(QString::fromUtf8(sheet.readAll()));
    QVERIFY(m_chinese.load(QStringLiteral("scandeck_zh.qm")));
}

void WindowLookTest::messageBoxShowsWholeText_data()
{
    QTest::addColumn<bool>("chinese");
    QTest::addColumn<bool>("qtsOwn");
    QTest::addColumn<QString>("path");
    QString withSeparators = QStringLiteral("/home/operator");
    while (withSeparators.size() < 170)
        withSeparators += QStringLiteral("/recordings_of_the_hall");
    withSeparators += QStringLiteral("/Wren_Plus_2024_01_31 14.05.09.txt");
    const QString withoutSeparators = QString(196, QLatin1Char('a')) + QStringLiteral(".txt");
    QTest::newRow("path") << false << false << withSeparators;
    QTest::newRow("path, Chinese") << true << false << withSeparators;
    QTest::newRow("one long word") << false << false << withoutSeparators;
    QTest::newRow("one long word, Chinese") << true << false << withoutSeparators;
    QTest::newRow("short text") << false << false << QString();
    QTest::newRow("Qt's own box") << false << true << withoutSeparators;
}

void WindowLookTest::messageBoxShowsWholeText()
{
    QFETCH(bool, chinese);
    QFETCH(bool, qtsOwn);
    QFETCH(QString, path);
    ScratchWorkingDir dir;
    auto window = openWindow();  // installs the fitting of every message box
    if (chinese)
        QApplication::installTranslator(&m_chinese);
    const char* context = path.isEmpty() ? "OffinePlayWidget" : "ScanDeck";
    const char* source = path.isEmpty() ? "There is an error in the input. Please enter it again" : "File save path:%1";
    const auto fill = [&path](const QString& t) { return path.isEmpty() ? t : t.arg(path); };
    const QString text = fill(QCoreApplication::translate(context, source));
    QCOMPARE(text != fill(QString::fromLatin1(source)), chinese);  // the translation is there
    QString shown;
    const QString problem = inspectMessageBox(
        [&] {
            if (qtsOwn)  // as QFileDialog reports a missing file
                QMessageBox::warning(window.get(), QStringLiteral("Open File"), path + QStringLiteral("\nFile not found."));
            else
                usermessages::information(window.get(), QStringLiteral("File saved"), text);
        },
        &shown);
    QApplication::removeTranslator(&m_chinese);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    shown.remove(QChar(0x200B));  // invisible break opportunities only
    QCOMPARE(shown, qtsOwn ? path + QStringLiteral("\nFile not found.") : text);
}

void WindowLookTest::checkableButtonsShowIcons_data()
{
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("unchecked") << false << true;
    QTest::newRow("checked") << true << true;
    QTest::newRow("disabled") << false << false;
}

// An icon is visible where the button with it and without it differ
// clearly: a blue icon on a blue checked button does not count.
void WindowLookTest::checkableButtonsShowIcons()
{
    QFETCH(bool, checked);
    QFETCH(bool, enabled);
    ScratchWorkingDir dir;
    auto window = openWindow();
    auto* tabs = control<QTabWidget>(window.get(), "tabWidget");
    QStringList tested, invisible;
    for (int page = 0; page < tabs->count(); ++page) {
        tabs->setCurrentIndex(page);
        waitFor([] { return false; }, 400);  // the page slides in
        for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
            const bool kind = qobject_cast<QToolButton*>(button) || qobject_cast<QPushButton*>(button);
            if (!kind || !button->isCheckable() || !button->isVisible() || tested.contains(button->objectName()))
                continue;
            tested << button->objectName();
            const QSignalBlocker quiet(button);
            const bool wasChecked = button->isChecked(), wasEnabled = button->isEnabled();
            const QString text = button->text();
            const QIcon icon = button->icon();
            button->setChecked(checked);
            button->setEnabled(enabled);
            button->setText(QString());
            const QImage with = button->grab().toImage();
            button->setIcon(QIcon());
            const QImage without = button->grab().toImage();
            button->setIcon(icon);
            button->setText(text);
            button->setChecked(wasChecked);
            button->setEnabled(wasEnabled);

            int contrasting = 0;
            for (int y = 0; y < with.height(); ++y)
                for (int x = 0; x < with.width(); ++x) {
                    const QColor a = with.pixelColor(x, y), b = without.pixelColor(x, y);
                    contrasting += std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                                             std::abs(a.blue() - b.blue())}) > 60;
                }
            if (contrasting < 20)
                invisible << QStringLiteral("%1 (%2 pixels)").arg(button->objectName()).arg(contrasting);
        }
    }
    QVERIFY2(tested.contains("btn_play") && tested.contains("btn_play_pause") && tested.contains("btn_legend"),
             qPrintable(tested.join(' ')));
    QVERIFY2(invisible.isEmpty(), qPrintable(invisible.join(", ")));
}

SCANDECK_TEST_MAIN(WindowLookTest)
#include "tst_window_look.moc"
