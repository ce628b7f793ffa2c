// The Chinese interface leaves nothing an operator reads in English: every
// page of the window, its table, status bar and legend, every dialog, and the
// buttons of Qt's own message boxes and button boxes.

#include "tst_scandeck_support.h"

#include "AboutDialog.h"
#include "BoxSelectionDialog.h"
#include "CaptureModelDialog.h"
#include "ColourLegendOverlay.h"
#include "ExportDataDialog.h"
#include "GPSTest.h"
#include "GridPolarDialog.h"
#include "SelectConnectType.h"

#include <QAbstractSpinBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableView>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTimer>

using namespace testing;

namespace {

// What stays as it is in Chinese: the names of the product and of the
// language, units, abbreviations, key names and serial devices.
bool isKeptWord(const QString& word)
{
    static const QSet<QString> kept = {"ScanDeck", "English", "FPS",  "CSV",   "PCD",  "PLY",  "PNG", "GPS",
                                       "IP",       "UDP",     "PCL",  "ID",    "XYZ",  "CM",   "cm",  "mm",
                                       "hz",       "Hz",      "ms",   "kB",    "Ctrl", "Shift", "Space", "Left",
                                       "Right",    "Home",    "End",  "Esc"};
    return kept.contains(word) || word.startsWith(QLatin1String("tty"));
}

// The English words in a text, after the model names and the version text
// are taken out.
QStringList englishWords(QString text)
{
    if (Qt::mightBeRichText(text))
        text = QTextDocumentFragment::fromHtml(text).toPlainText();
    text.remove(LIdarFactory::VersionText());
    QStringList models = LIdarFactory::GetInstance()->ModelNames();
    std::sort(models.begin(), models.end(), [](const QString& a, const QString& b) { return a.size() > b.size(); });
    for (const QString& model : models)  // Tern_Plus before Tern
        text.remove(model);
    QStringList words;
    QRegularExpressionMatchIterator it = QRegularExpression(QStringLiteral("[A-Za-z]{2,}")).globalMatch(text);
    while (it.hasNext()) {
        const QString word = it.next().captured();
        if (!isKeptWord(word))
            words << word;
    }
    return words;
}

// Every text of `root` and its visible children that an operator reads:
// titles, labels, buttons, items, headers, tooltips, placeholders.
QStringList englishTexts(QWidget* root)
{
    QStringList found;
    const auto check = [&found](const QObject* where, const QString& text) {
        if (!englishWords(text).isEmpty())
            found << QStringLiteral("%1: \"%2\"").arg(where->objectName(), text.simplified());
    };
    QList<QWidget*> widgets = root->findChildren<QWidget*>();
    widgets.prepend(root);
    for (QWidget* w : widgets) {
        if (!w->isVisible())
            continue;
        if (w->isWindow())
            check(w, w->windowTitle());
        check(w, w->toolTip());
        if (auto* label = qobject_cast<QLabel*>(w))
            check(w, label->text());
        else if (auto* button = qobject_cast<QAbstractButton*>(w))
            check(w, button->text());
        else if (auto* group = qobject_cast<QGroupBox*>(w))
            check(w, group->title());
        else if (auto* line = qobject_cast<QLineEdit*>(w))
            check(w, line->placeholderText());
        else if (auto* combo = qobject_cast<QComboBox*>(w)) {
            for (int i = 0; i < combo->count(); ++i)
                check(w, combo->itemText(i));
        } else if (auto* tabs = qobject_cast<QTabWidget*>(w)) {
            for (int i = 0; i < tabs->count(); ++i)
                check(w, tabs->tabText(i));
        } else if (auto* table = qobject_cast<QTableView*>(w)) {
            for (int i = 0; table->model() && i < table->model()->columnCount(); ++i)
                check(w, table->model()->headerData(i, Qt::Horizontal).toString());
        }
        if (auto* spin = qobject_cast<QAbstractSpinBox*>(w))
            check(w, spin->specialValueText());
    }
    return found;
}

// Shows the box that `show` opens (modal) and reads it before closing it.
QStringList englishInMessageBox(const std::function<void()>& show)
{
    QStringList found{QStringLiteral("no message box appeared")};
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        found = englishTexts(box);
        box->done(0);
    });
    poll.start(20);
    QTimer::singleShot(10000, [] {  // never wait for a click
        if (QWidget* stuck = QApplication::activeModalWidget())
            stuck->close();
    });
    show();
    return found;
}

}  // namespace

class ChineseTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void nothingLeftInEnglish_data();
    void nothingLeftInEnglish();

private:
    std::unique_ptr<ScratchWorkingDir> m_dir;
    std::unique_ptr<ScanDeck> m_window;
};

void ChineseTest::initTestCase()
{
    m_dir = std::make_unique<ScratchWorkingDir>(QStringLiteral("Chinese"));
    m_window = openWindow();
}

void ChineseTest::cleanupTestCase()
{
    m_window.reset();
    m_dir.reset();
}

void ChineseTest::nothingLeftInEnglish_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what : {"page 0", "page 1", "page 2", "table", "connection dialog", "grid dialog", "box dialog",
                             "export dialog", "capture dialog", "about", "GPS test", "question", "information", "connected"})
        QTest::newRow(what) << QString::fromLatin1(what);
}

void ChineseTest::nothingLeftInEnglish()
{
    QFETCH(QString, what);
    ScanDeck* window = m_window.get();
    auto* tabs = control<QTabWidget>(window, "tabWidget");
    const auto dialogTexts = [](QWidget* dialog) {
        dialog->show();
        QTest::qWait(50);
        const QStringList found = englishTexts(dialog);
        dialog->close();
        return found;
    };
    QStringList found;
    if (what.startsWith("page")) {
        tabs->setCurrentIndex(what.right(1).toInt());
        waitFor([] { return false; }, 350);  // the page slides in
        found = englishTexts(window);
    } else if (what == "table") {
        click(window, "btn_table");
        window->showFrame(ringFrame(12));
        waitFor([] { return false; }, 600);  // the pane slides open
        found = englishTexts(window);
        click(window, "btn_table");
    } else if (what == "connection dialog") {
        SelectConnectType dialog(window, window);
        found = dialogTexts(&dialog);
    } else if (what == "grid dialog") {
        GridPolarDialog dialog(window, window);
        found = dialogTexts(&dialog);
    } else if (what == "box dialog") {
        BoxSelectionDialog dialog(window, window);
        found = dialogTexts(&dialog);
    } else if (what == "export dialog") {
        ExportDataDialog dialog(QStringLiteral("Tern"), window);
        found = dialogTexts(&dialog);
    } else if (what == "capture dialog") {
        CaptureModelDialog dialog(QStringLiteral("Tern"), 2368, window);
        found = dialogTexts(&dialog);
    } else if (what == "about") {
        click(window, "btn_about");  // with the shortcuts listed
        found = dialogTexts(window->findChild<AboutDialog*>());
    } else if (what == "connected") {  // the link status, the device panel
        useShippedSettings();
        SimulatedLidarRig lidar;
        QVERIFY(lidar.start(QStringLiteral("Tern_Plus"), sim::Transport::Udp));
        QVERIFY(connectWindow(*window, QStringLiteral("Tern_Plus"), lidar));
        for (int page : {0, 2}) {
            tabs->setCurrentIndex(page);
            waitFor([] { return false; }, 350);
            found << englishTexts(window);
        }
        click(window, "btn_disconnect");
    } else if (what == "GPS test") {
        GPSTest test(window);
        found = dialogTexts(&test);
    } else {
        const bool question = what == "question";
        found = englishInMessageBox([&] {
            usermessages::setHandler(nullptr);  // the real box
            if (question)
                usermessages::question(window, ScanDeck::tr("question"), ScanDeck::tr("Whether to play offline file ?"));
            else
                usermessages::information(window, ScanDeck::tr("information"), ScanDeck::tr("Unable to parse this file"));
        });
    }
    QVERIFY2(found.isEmpty(), qPrintable(found.join(QStringLiteral("; "))));
}

SCANDECK_TEST_MAIN(ChineseTest)
#include "tst_chinese.moc"
