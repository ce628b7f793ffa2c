// How the window reads with the style sheet we ship: every message box shows
// its whole text (a 200-character path with and without separators, in
// English and Chinese, ours and Qt's own), every checkable button shows its
// icon unchecked, checked and disabled, every page and the status bar fit a
// laptop's screen in both languages, and the Chinese window, its dialogs and
// Qt's own buttons leave nothing in English.

#include "tst_scandeck_support.h"

#include "AboutDialog.h"
#include "BoxSelectionDialog.h"
#include "CaptureModelDialog.h"
#include "ExportDataDialog.h"
#include "GPSTest.h"
#include "GridPolarDialog.h"
#include "SelectConnectType.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QSlider>
#include <QStatusBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTableView>
#include <QTextDocument>
#include <QTextDocumentFragment>
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

// Shows the box that `show` opens (modal), inspects it from a timer and
// closes it; a problem when no box appeared.
QString inspectMessageBox(const std::function<void()>& show, const std::function<QString(QMessageBox*)>& inspect)
{
    QString problem = QStringLiteral("no message box appeared");
    QTimer poll;
    poll.setInterval(20);
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        problem = inspect(box);
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

// The controls an operator reads: each should show its whole text.
bool isControl(const QWidget* w)
{
    return qobject_cast<const QAbstractButton*>(w) || qobject_cast<const QLabel*>(w)
           || qobject_cast<const QComboBox*>(w) || qobject_cast<const QAbstractSpinBox*>(w)
           || qobject_cast<const QSlider*>(w) || qobject_cast<const QProgressBar*>(w);
}

// Visible controls of `area`, not the parts of other controls (a spin box's
// line edit), with their rectangles in the area's coordinates.
QVector<QPair<QWidget*, QRect>> controlsIn(QWidget* area)
{
    QVector<QPair<QWidget*, QRect>> controls;
    for (QWidget* w : area->findChildren<QWidget*>()) {
        if (!w->isVisible() || !isControl(w) || (w->parentWidget() && isControl(w->parentWidget())))
            continue;
        controls.append({w, QRect(w->mapTo(area, QPoint(0, 0)), w->size())});
    }
    return controls;
}

QString nameOf(const QWidget* w)
{
    return w->objectName().isEmpty() ? QString::fromLatin1(w->metaObject()->className()) : w->objectName();
}

// What does not fit in `area`: a control narrower or lower than its text
// needs, a control reaching out of the area, two controls on top of each other.
QStringList layoutProblems(QWidget* area)
{
    QStringList problems;
    const auto controls = controlsIn(area);
    for (int i = 0; i < controls.size(); ++i) {
        QWidget* w = controls[i].first;
        const QRect r = controls[i].second;
        QSize needs;
        if (auto* button = qobject_cast<QAbstractButton*>(w)) {
            if (!button->text().isEmpty())
                needs = button->sizeHint();
        } else if (auto* label = qobject_cast<QLabel*>(w)) {
            if (!label->wordWrap() && !label->text().isEmpty())
                needs = label->minimumSizeHint();
        } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
            needs = combo->minimumSizeHint();
        }
        if (needs.isValid() && (needs.width() > r.width() || needs.height() > r.height()))
            problems << QStringLiteral("%1 is %2x%3, needs %4x%5")
                            .arg(nameOf(w)).arg(r.width()).arg(r.height()).arg(needs.width()).arg(needs.height());
        if (!area->rect().contains(r))
            problems << QStringLiteral("%1 reaches out of %2").arg(nameOf(w), nameOf(area));
        for (int j = i + 1; j < controls.size(); ++j)
            if (r.intersects(controls[j].second))
                problems << QStringLiteral("%1 overlaps %2").arg(nameOf(w), nameOf(controls[j].first));
    }
    return problems;
}

// What stays as it is in Chinese: the names of the product and the language,
// units, abbreviations, key names, serial devices and ROS's names.
bool isKeptWord(const QString& word)
{
    static const QSet<QString> kept = {"ScanDeck", "English", "FPS", "CSV", "PCD", "PLY",  "PNG",   "GPS",
                                       "IP",       "UDP",     "PCL", "ID",  "XYZ", "CM",   "hz",    "kB",
                                       "MB",       "pkt",     "Ctrl", "Shift", "Space", "Left", "Right", "Home", "End",
                                       "ROS",      "bag"};
    return kept.contains(word) || word.startsWith(QLatin1String("tty"));
}

// English words in the texts of `root` and its visible children that an
// operator reads, after the model names and the version text are taken out.
QStringList englishTexts(QWidget* root)
{
    QStringList models = LIdarFactory::GetInstance()->ModelNames();
    std::sort(models.begin(), models.end(), [](const QString& a, const QString& b) { return a.size() > b.size(); });
    QStringList found;
    const auto check = [&](const QObject* where, QString text) {
        if (Qt::mightBeRichText(text))
            text = QTextDocumentFragment::fromHtml(text).toPlainText();
        text.remove(LIdarFactory::VersionText());
        for (const QString& model : models)  // Tern_Plus before Tern
            text.remove(model);
        for (auto it = QRegularExpression(QStringLiteral("[A-Za-z]{2,}")).globalMatch(text); it.hasNext();)
            if (!isKeptWord(it.next().captured()))
                return void(found << QStringLiteral("%1: \"%2\"").arg(where->objectName(), text.simplified()));
    };
    QList<QWidget*> widgets = root->findChildren<QWidget*>();
    widgets.prepend(root);
    for (QWidget* w : widgets) {
        if (!w->isVisible())
            continue;
        check(w, w->isWindow() ? w->windowTitle() : QString());
        check(w, w->toolTip());
        if (auto* label = qobject_cast<QLabel*>(w))
            check(w, label->text());
        else if (auto* button = qobject_cast<QAbstractButton*>(w))
            check(w, button->text());
        else if (auto* line = qobject_cast<QLineEdit*>(w))
            check(w, line->placeholderText());
        for (int i = 0; qobject_cast<QComboBox*>(w) && i < static_cast<QComboBox*>(w)->count(); ++i)
            check(w, static_cast<QComboBox*>(w)->itemText(i));
        for (int i = 0; qobject_cast<QTabWidget*>(w) && i < static_cast<QTabWidget*>(w)->count(); ++i)
            check(w, static_cast<QTabWidget*>(w)->tabText(i));
        if (auto* table = qobject_cast<QTableView*>(w))
            for (int i = 0; i < table->model()->columnCount(); ++i)
                check(w, table->model()->headerData(i, Qt::Horizontal).toString());
    }
    return found;
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
    void everyPageFitsTheScreen_data();
    void everyPageFitsTheScreen();
    void nothingLeftInEnglish_data();
    void nothingLeftInEnglish();

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
        [&shown](QMessageBox* box) {
            const QLabel* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
            shown = label->text();
            return fitProblem(label);
        });
    QApplication::removeTranslator(&m_chinese);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    // Exactly the message: nothing added to make it wrap.
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

void WindowLookTest::everyPageFitsTheScreen_data()
{
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("page");
    for (const QSize screen : {QSize(1024, 768), QSize(1280, 800), QSize(1366, 768), QSize(1920, 1080)})
        for (const QString language : {"English", "Chinese"})
            for (int page = 0; page < 3; ++page)
                QTest::addRow("%dx%d, %s, page %d", screen.width(), screen.height(), qPrintable(language), page)
                    << screen << language << page;
}

// The window as an operator sees it on a screen of that size, with a lidar
// connected (the link status shows) and the readouts at their longest.
void WindowLookTest::everyPageFitsTheScreen()
{
    QFETCH(QSize, screen);
    QFETCH(QString, language);
    QFETCH(int, page);
    ScratchWorkingDir dir(language);
    auto window = openWindow();
    window->showNormal();
    window->resize(screen);
    auto* tabs = control<QTabWidget>(window.get(), "tabWidget");
    tabs->setCurrentIndex(page);
    const QPair<const char*, const char*> longest[] = {
        {"label_motor_speed", " 12 hz,720 r/s"}, {"label_delta_x", "4000.00 CM"},
        {"label_delta_y", "4000.00 CM"},         {"label_delta_distance", "4000.00 CM"},
        {"label_azimuth", "359.999"},            {"label_distance", "40.0001"}};
    for (const auto& readout : longest) {
        auto* label = window->findChild<QLabel*>(QLatin1String(readout.first));
        label->setText(label->text() + QLatin1String(readout.second));
    }
    auto* link = window->findChild<QLabel*>(QStringLiteral("label_link_status"));
    QVERIFY(link);
    link->setText(QStringLiteral("4500 packets/s, 10.0 frames/s, 0.0 s ago"));
    link->show();
    window->statusBar()->showMessage(QStringLiteral("Distance between two points:1234.56"));
    waitFor([] { return false; }, 400);  // the page slides in, the layouts settle

    const QImage shot = window->grab().toImage();
    QStringList problems;
    if (!window->findChild<QLabel*>(QStringLiteral("label_status_message"))->isVisible())
        problems << QStringLiteral("the status message is not shown");
    if (window->width() > screen.width() || window->height() > screen.height())
        problems << QStringLiteral("the window needs %1x%2").arg(window->width()).arg(window->height());
    for (QWidget* area : {tabs->currentWidget(), control(window.get(), "frame_tools"),
                          control(window.get(), "frame_view_tools"), static_cast<QWidget*>(window->statusBar())})
        problems << layoutProblems(area);
    if (!problems.isEmpty()) {
        QTemporaryDir keep(QDir::temp().filePath(QStringLiteral("scandeck-layout-XXXXXX")));
        keep.setAutoRemove(false);
        const QString file = keep.filePath(QString::fromLatin1(QTest::currentDataTag()) + ".png");
        shot.save(file);
        problems << QStringLiteral("picture: ") + file;
    }
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QStringLiteral("; "))));
}

void WindowLookTest::nothingLeftInEnglish_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what : {"pages", "table", "connected", "dialogs", "message boxes"})
        QTest::newRow(what) << QString::fromLatin1(what);
}

// The window, its dialogs and Qt's own buttons in Chinese.
void WindowLookTest::nothingLeftInEnglish()
{
    QFETCH(QString, what);
    ScratchWorkingDir dir(QStringLiteral("Chinese"));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QStringList found;
    const auto walkPages = [&] {
        auto* tabs = control<QTabWidget>(w, "tabWidget");
        for (int page = 0; page < tabs->count(); ++page) {
            tabs->setCurrentIndex(page);
            waitFor([] { return false; }, 350);  // the page slides in
            found << englishTexts(w);
        }
    };
    if (what == "pages") {
        walkPages();
    } else if (what == "table") {
        click(w, "btn_table");
        w->showFrame(ringFrame(12));
        waitFor([] { return false; }, 600);  // the pane slides open
        found = englishTexts(w);
    } else if (what == "connected") {  // the link status, the device panel
        useShippedSettings();  // every model's section, for the device panel
        SimulatedLidarRig lidar;
        QVERIFY(lidar.start(QStringLiteral("Tern_Plus"), sim::Transport::Udp));
        QVERIFY(connectWindow(*w, QStringLiteral("Tern_Plus"), lidar));
        walkPages();
        click(w, "btn_disconnect");
    } else if (what == "dialogs") {
        click(w, "btn_about");  // with the shortcuts listed
        const std::unique_ptr<QWidget> dialogs[] = {
            std::make_unique<SelectConnectType>(w, w),        std::make_unique<GridPolarDialog>(w, w),
            std::make_unique<BoxSelectionDialog>(w, w),       std::make_unique<ExportDataDialog>("Tern", w),
            std::make_unique<CaptureModelDialog>("Tern", 2368, w), std::make_unique<GPSTest>(w)};
        for (const auto& dialog : dialogs)
            dialog->show();
        QTest::qWait(50);
        found << englishTexts(w->findChild<AboutDialog*>());
        for (const auto& dialog : dialogs)
            found << englishTexts(dialog.get());
    } else {
        usermessages::setHandler(nullptr);  // the real boxes, with Qt's own buttons
        for (bool question : {true, false})
            found << inspectMessageBox(
                [&] {
                    if (question)
                        usermessages::question(w, ScanDeck::tr("question"), ScanDeck::tr("Whether to play offline file ?"));
                    else
                        usermessages::information(w, ScanDeck::tr("information"), ScanDeck::tr("Please stop the offline playback first"));
                },
                [](QMessageBox* box) { return englishTexts(box).join(QStringLiteral("; ")); });
        found.removeAll(QString());
    }
    QVERIFY2(found.isEmpty(), qPrintable(found.join(QStringLiteral("; "))));
}

SCANDECK_TEST_MAIN(WindowLookTest)
#include "tst_window_look.moc"
