// The CSV format (number texts, rounding, line layout), then the window's
// exports: CSV of the next frames shown (from showFrame and from the
// player), its end, cancel and failures, the same bytes as scandeck-cli;
// the current frame as PCD and PLY read back by PCL; the view as a PNG;
// and captures opened in the player or dropped on the view.

#include "CaptureBuilders.h"
#include "CloudPoint.h"
#include "CsvWriter.h"
#include "ExportDataDialog.h"
#include "IniSettings.h"
#include "NumberText.h"
#include "OffinePlayWidget.h"
#include "PacketBuilders.h"
#include "PointRounding.h"
#include "RecordFile.h"
#include "tst_scandeck_support.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QOpenGLWidget>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>

#include <cmath>
#include <cstring>
#include <random>

#include <pcl/io/pcd_io.h>
#include <pcl/io/ply_io.h>

using namespace testing;

namespace {

struct ExportRequest {
    QString count;  // as typed
    double start = 0, end = 360;
    QString path;
};

// Fills the dialog in and presses OK; true when it was accepted.
bool fillExportDialog(ExportDataDialog& dialog, const ExportRequest& request)
{
    dialog.findChild<QSpinBox*>("spinBox_frame_count")->findChild<QLineEdit*>()->setText(request.count);
    dialog.findChild<QDoubleSpinBox*>("spinBox_start_angle")->setValue(request.start);
    dialog.findChild<QDoubleSpinBox*>("spinBox_end_angle")->setValue(request.end);
    dialog.findChild<QLineEdit*>("lineEdit_path")->setText(request.path);
    dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    return dialog.result() == QDialog::Accepted;
}

// Message boxes recorded as "title: text" and answered with `answer`.
struct Answering {
    explicit Answering(bool yes)
    {
        previous = usermessages::setHandler([this, yes](QWidget*, const UserMessage& m) {
            texts << m.title + ": " + m.text;
            return m.kind == UserMessage::Question ? (yes ? QMessageBox::Yes : QMessageBox::No) : QMessageBox::Ok;
        });
    }
    ~Answering() { usermessages::setHandler(previous); }
    QStringList texts;
    usermessages::Handler previous;
};

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

QString cliPath()
{
    return QCoreApplication::applicationDirPath() + "/../scandeck-cli";
}

}  // namespace

class ExportTest : public QObject {
    Q_OBJECT
private slots:
    void numberText_data();
    void numberText();
    void shortestTextReadsBackExactly();
    void gridShortcutMatchesDigitsAndQt_data();
    void gridShortcutMatchesDigitsAndQt();
    void everyFloatOfABinadeMatchesDigits_data();
    void everyFloatOfABinadeMatchesDigits();
    void csvLines();
    void initTestCase() { m_dir = std::make_unique<ScratchWorkingDir>(QStringLiteral("English")); }
    void cleanupTestCase() { m_dir.reset(); }

    void csvExportRuns_data();
    void csvExportRuns();
    void cancelAndFailures_data();
    void cancelAndFailures();
    void windowWritesTheCliBytes();
    void viewExports_data();
    void viewExports();
    void capturesInThePlayer_data();
    void capturesInThePlayer();

private:
    std::unique_ptr<ScratchWorkingDir> m_dir;
    QTemporaryDir m_files;
};

void ExportTest::csvExportRuns_data()
{
    QTest::addColumn<bool>("fromPlayer");
    QTest::addColumn<QString>("count");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::addColumn<int>("lines");  // after the frames, header included
    // Frames of 50 points, one each 7.2 degrees, are shown once the export runs.
    QTest::newRow("one frame: the end shows with the second") << false << "1" << 0.0 << 360.0 << 1 + 50;
    QTest::newRow("start above end: the header only") << false << "2" << 200.0 << 100.0 << 1;
    QTest::newRow("from the player, 90 to 180 degrees") << true << "3" << 90.0 << 180.0 << 1 + 3 * 13;
}

void ExportTest::csvExportRuns()
{
    QFETCH(bool, fromPlayer);
    QFETCH(QString, count);
    QFETCH(double, start);
    QFETCH(double, end);
    QFETCH(int, lines);
    Answering messages(true);
    auto w = openWindow();
    auto* player = control<OffinePlayWidget>(w.get(), "offline");
    const QString path = m_files.filePath(QString::fromLatin1(QTest::currentDataTag()) + ".csv");
    w->setExportDialogHook([&](ExportDataDialog& d) { return fillExportDialog(d, {count, start, end, path}); });
    auto* button = fromPlayer ? player->findChild<QPushButton*>("btn_export_csv")
                              : control<QAbstractButton>(w.get(), "btn_export_csv");
    QVector<Frame> frames(8, ringFrame(50));
    if (fromPlayer)
        player->loadFrames("Tern", frames);  // shows the first frame before the export starts
    QSignalSpy progress(w.get(), &ScanDeck::SendDataSavingProgressSianal);

    button->setEnabled(true);  // the window's own button waits for a lidar
    button->click();
    QVERIFY(w->csvExport().isActive() && button->isChecked());
    QCOMPARE(button->text(), QStringLiteral("Exporting data"));
    const int limit = count.toInt();
    for (int shown = 1; shown <= limit + 1; ++shown) {
        QVERIFY2(messages.texts.isEmpty(), qPrintable(messages.texts.join('\n')));  // not a frame early
        QVERIFY(!QFile::exists(path));  // only the whole file appears under its name
        fromPlayer ? clickPlayer(player, "btn_next") : w->showFrame(ringFrame(50));
    }
    QCOMPARE(messages.texts, QStringList{"File saved: File save path:" + path});
    QVERIFY(!QFile::exists(path + ".part"));
    QVERIFY(!w->csvExport().isActive() && !button->isChecked());
    QCOMPARE(button->text(), QStringLiteral("Export CSV"));
    QVERIFY(!w->findChild<QProgressBar*>()->isVisible());
    const QList<QByteArray> written = fileBytes(path).split('\n');
    QCOMPARE(written.size() - 1, lines);
    QCOMPARE(written.first() + '\n', QByteArray(CsvWriter::kHeader));
    // One progress signal a line, each with the share of frames done so far.
    QCOMPARE(progress.size(), lines - 1);
    if (!progress.isEmpty())
        QCOMPARE(progress.last().at(0).toFloat(), 1.0f);
    if (lines > 1)
        QVERIFY(written.at(lines - 1).startsWith(count.toLatin1() + ",0,"));
}

void ExportTest::cancelAndFailures_data()
{
    QTest::addColumn<QString>("count");
    QTest::addColumn<QString>("directory");  // under the test's files
    QTest::addColumn<bool>("yes");           // to the cancel question
    QTest::addColumn<QStringList>("expected");
    const QString cancel = "inquiry: Do you want to cancel exporting CSV files?";
    QTest::newRow("cancel, yes: the file goes") << "5"
                                                << "" << true << QStringList{cancel};
    QTest::newRow("cancel, no: the export goes on") << "5"
                                                    << "" << false << QStringList{cancel};
    QTest::newRow("unwritable path") << "5"
                                     << "missing/folder" << true << QStringList{"warning: File save failed!"};
    QTest::newRow("no frames asked for") << "0"
                                         << "" << true
                                         << QStringList{"critical: The number of saves must be greater than zero"};
    QTest::newRow("frame count not typed")
        << ""
        << "" << true << QStringList{"critical: The number of saves must be greater than zero"};
}

void ExportTest::cancelAndFailures()
{
    QFETCH(QString, count);
    QFETCH(QString, directory);
    QFETCH(bool, yes);
    QFETCH(QStringList, expected);
    Answering messages(yes);
    auto w = openWindow();
    const QString path = m_files.filePath(directory.isEmpty() ? "cancel.csv" : directory + "/cancel.csv");
    QFile::remove(path);
    w->setExportDialogHook([&](ExportDataDialog& d) { return fillExportDialog(d, {count, 0, 360, path}); });
    auto* button = control<QAbstractButton>(w.get(), "btn_export_csv");
    button->setEnabled(true);
    button->click();
    // A file that cannot be opened starts nothing.
    const bool started = w->csvExport().isActive();
    QCOMPARE(started, count.toInt() > 0 && directory.isEmpty());
    w->showFrame(ringFrame(10));
    if (started)
        button->click();  // stop by hand
    w->showFrame(ringFrame(10));
    QCOMPARE(messages.texts.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
        QVERIFY2(messages.texts[i].startsWith(expected[i]), qPrintable(messages.texts[i]));
    if (!directory.isEmpty())  // the path and the system's reason beneath
        QVERIFY2(messages.texts[0].contains("\n" + path + ": "), qPrintable(messages.texts[0]));
    const bool goesOn = started && !yes;
    QCOMPARE(w->csvExport().isActive(), goesOn);
    QCOMPARE(button->isChecked(), goesOn);
    QCOMPARE(button->text(), goesOn ? QStringLiteral("Exporting data") : QStringLiteral("Export CSV"));
    // Written under a temporary name while it runs; cancelled, nothing is left.
    QVERIFY(!QFile::exists(path));
    QCOMPARE(QFile::exists(path + ".part"), goesOn);
}

void ExportTest::windowWritesTheCliBytes()
{
    Answering messages(true);
    // A model no other test here parses: the player's frames start afresh.
    QVector<QByteArray> elements{"Wren_Kite"};
    elements += revolutionPackets("Wren_Kite", 3);
    const QString recording = m_files.filePath("kite.txt");
    QFile file(recording);
    QVERIFY(file.open(QIODevice::WriteOnly) && lidar::writeRecordElements(file, elements));
    file.close();
    const QString fromCli = m_files.filePath("kite-cli.csv"), fromWindow = m_files.filePath("kite-window.csv");
    QProcess cli;
    cli.start(cliPath(), {"convert", recording, "-o", fromCli});
    QVERIFY(cli.waitForFinished(30000) && cli.exitCode() == 0);

    auto w = openWindow();
    auto* player = control<OffinePlayWidget>(w.get(), "offline");
    const auto parsed = LIdarFactory::GetInstance()->ParseFile(recording);
    QCOMPARE(parsed.second.size(), 3);
    player->loadFrames(parsed.first, parsed.second);
    w->setExportDialogHook([&](ExportDataDialog& d) { return fillExportDialog(d, {"3", 0, 360, fromWindow}); });
    clickPlayer(player, "btn_export_csv");
    for (const char* step : {"btn_last", "btn_next", "btn_next", "btn_next"})  // frames 1, 2, 3, then the end
        clickPlayer(player, step);
    QCOMPARE(messages.texts.size(), 1);
    QCOMPARE(fileBytes(fromWindow), fileBytes(fromCli));
}

void ExportTest::viewExports_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("PCD") << "act_export_pcd";
    QTest::newRow("PLY") << "act_export_ply";
    QTest::newRow("PNG with Ctrl+S") << "act_save_view";
}

void ExportTest::viewExports()
{
    QFETCH(QString, action);
    Answering messages(true);
    auto w = openWindow();
    const QString suffix = action == "act_save_view" ? "png" : action.right(3);
    const QString path = m_files.filePath("view." + suffix);
    QString proposed;
    w->setSaveFileHook([&](QWidget*, const QString&, const QString& name, const QString&) {
        proposed = name;
        return path;
    });
    // The proposed name carries the model, whatever the title shows.
    control<OffinePlayWidget>(w.get(), "offline")->loadFrames("Tern", {Frame{}}, m_files.filePath("hall.txt"));
    QCOMPARE(w->windowTitle(), QStringLiteral("Tern — hall.txt"));
    if (suffix != "png") {  // nothing shown yet: nothing to save
        w->findChild<QAction*>(action)->trigger();
        QCOMPARE(messages.texts, QStringList{"information: There is no frame to export"});
        messages.texts.clear();
    }
    Frame frame = makeFrame({{0, 1.234f, -2.0f, 148.2f, 80}, {3, -0.5f, 0.25f, 296.5f, 7}});
    frame.points[3][0].timestamp = 1716199872345;
    w->showFrame(frame);
    if (suffix == "png") {
        w->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w.get()));
        QTest::keyClick(w.get(), Qt::Key_S, Qt::ControlModifier);
    } else {
        w->findChild<QAction*>(action)->trigger();
    }
    QCOMPARE(messages.texts, QStringList{"File saved: File save path:" + path});
    QVERIFY2(proposed.startsWith("./Tern_") && proposed.endsWith("." + suffix), qPrintable(proposed));

    if (suffix == "png") {
        const QImage image(path, "PNG");
        auto* view = w->findChild<QOpenGLWidget*>("openGLWidget");
        QCOMPARE(image.size(), view->size() * view->devicePixelRatioF());
        return;
    }
    // PCL reads back the points as shown (rounded); scandeck-cli's test checks every field.
    QStringList points;
    auto collect = [&](const auto& cloud) {
        for (const auto& p : cloud.points)
            points << QString("%1 %2 %3 %4").arg(p.x).arg(p.y).arg(qint64(p.timestamp)).arg(p.id);
    };
    if (suffix == "pcd") {
        pcl::PointCloud<cloudfile::PcdPoint> cloud;
        QCOMPARE(pcl::io::loadPCDFile(path.toStdString(), cloud), 0);
        collect(cloud);
    } else {
        pcl::console::setVerbosityLevel(pcl::console::L_ERROR);
        pcl::PointCloud<cloudfile::PlyPoint> cloud;
        QCOMPARE(pcl::io::loadPLYFile(path.toStdString(), cloud), 0);
        collect(cloud);
    }
    QCOMPARE(points, (QStringList{"1.23 -2 -1 0", "-0.5 0.25 1716199872345 3"}));
}

void ExportTest::capturesInThePlayer_data()
{
    QTest::addColumn<QByteArray>("capture");
    QTest::addColumn<int>("port");  // the answer to the model question; 0 cancels it
    QTest::addColumn<bool>("drop");
    QTest::addColumn<QStringList>("expected");
    QVector<QByteArray> frames;
    for (const QByteArray& packet : revolutionPackets("Wren_Plus", 3))
        frames << ethernet(udp4(2368, packet));
    const QByteArray good = captureFile(CaptureFormat::PcapNanoseconds, true, kLinkEthernet, frames);
    QTest::newRow("opened") << good << 2368 << false << QStringList{};
    QTest::newRow("dropped on the view") << good << 2368 << true
                                         << QStringList{"question: Whether to play offline file ?"};
    QTest::newRow("model question cancelled") << good << 0 << false << QStringList{};
    QTest::newRow("nothing to that port")
        << good << 2370 << false
        << QStringList{
               "information: The capture holds no UDP datagram to port 2370 (73 packets read); its UDP "
               "datagrams go to port 2368"};
    QTest::newRow("a wireless capture")
        << captureFile(CaptureFormat::PcapNg, false, kLinkIeee80211, frames) << 2368 << true
        << QStringList{
               "information: The link type 105 (IEEE802_11) of %1 is not supported: only Ethernet, Linux "
               "cooked (SLL, SLL2), raw IP and BSD loopback captures can be read"};
}

void ExportTest::capturesInThePlayer()
{
    QFETCH(QByteArray, capture);
    QFETCH(int, port);
    QFETCH(bool, drop);
    QFETCH(QStringList, expected);
    Answering messages(true);
    auto w = openWindow();
    auto* player = control<OffinePlayWidget>(w.get(), "offline");
    player->setMessageHook([&](const QString& title, const QString& text) { messages.texts << title + ": " + text; });
    const QString path = m_files.filePath(QString::fromLatin1(QTest::currentDataTag()) + ".pcap");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(capture) == capture.size());
    file.close();
    // The question starts from the last choice, kept in the settings file.
    IniSettings().setValue(QString(), "capture model", "Tern_GPS");
    IniSettings().setValue(QString(), "capture data port", "2999");
    QStringList offered;
    player->setCaptureModelHook([&](QString& model, quint16& chosenPort) {
        offered << model + ":" + QString::number(chosenPort);
        model = "Wren_Plus";
        chosenPort = quint16(port);
        return port != 0;
    });
    if (drop) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        QWidget* view = w->findChild<QWidget*>("openGLWidget");
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &enter);
        QVERIFY(enter.isAccepted());  // a ".pcap" is welcome
        QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
    } else {
        player->setOpenFileHook([&](const QString&, const QString&, const QString& filter) {
            return filter.contains("*.pcap") ? path : QString();
        });
        clickPlayer(player, "btn_open_file");
    }
    for (QString& line : expected)
        line.replace("%1", path);
    QCOMPARE(messages.texts, expected);
    QCOMPARE(offered, QStringList{"Tern_GPS:2999"});
    const bool loads = port == 2368 && expected.size() <= 1 && !expected.value(0).contains("link type");
    QCOMPARE(player->isLoaded(), loads);
    if (!loads)
        return;
    QCOMPARE(player->frameCount(), 3);
    QCOMPARE(w->windowTitle(), QStringLiteral("Wren_Plus — ") + QFileInfo(path).fileName());
    QVERIFY(w->frameCloud().size() > 100);
    // The choice is kept for next time.
    QVERIFY(m_dir->settingsText().contains("capture model=Wren_Plus\ncapture data port=2368\n"));
    player->stop();
}

void ExportTest::numberText_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("rounded");  // to the centimetre, halves up
    QTest::newRow("float digits, not double ones") << 0.1f << QByteArray("0.1") << QByteArray("0.1");
    QTest::newRow("half") << 0.125f << QByteArray("0.125") << QByteArray("0.13");
    QTest::newRow("negative half goes up too") << -0.125f << QByteArray("-0.125") << QByteArray("-0.12");
    QTest::newRow("negative above half") << -1.236f << QByteArray("-1.236") << QByteArray("-1.24");
    QTest::newRow("small negative to zero") << -0.004f << QByteArray("-0.004") << QByteArray("0");
    QTest::newRow("azimuth step") << 15.0f / 41.0f << QByteArray("0.36585367") << QByteArray("0.37");
    QTest::newRow("whole number stays plain") << 300.0f << QByteArray("300") << QByteArray("300");
    QTest::newRow("million takes the exponent") << 1e6f << QByteArray("1e+06") << QByteArray("1e+06");
    QTest::newRow("small takes the exponent") << 1.5e-5f << QByteArray("1.5e-05") << QByteArray("0");
}

void ExportTest::numberText()
{
    QFETCH(float, value);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, rounded);
    QCOMPARE(numbertext::shortest(value), text);
    QCOMPARE(numbertext::shortest(display::roundCoordinate(value)), rounded);
}

void ExportTest::shortestTextReadsBackExactly()
{
    std::mt19937 random(7);
    for (int i = 0; i < 200000; ++i) {
        const uint32_t bits = random();
        float value = std::uniform_real_distribution<float>(-70.0f, 400.0f)(random);
        if (i % 2)
            std::memcpy(&value, &bits, sizeof value);  // any finite float
        if (!std::isfinite(value))
            continue;
        const QByteArray text = numbertext::shortest(value);
        QCOMPARE(std::strtof(text.constData(), nullptr), value);
        // One significant digit fewer never reads back as the same float.
        QByteArray digits = QByteArray::number(text.split('e').first().replace("-", "").replace(".", "").toULongLong());
        while (digits.endsWith('0'))  // no leading nor trailing zeros
            digits.chop(1);
        char shorter[64];
        std::snprintf(shorter, sizeof shorter, "%.*g", int(digits.size()) - 1, double(value));
        QVERIFY2(digits.size() <= 1 || std::strtof(shorter, nullptr) != value, text.constData());
    }
}

void ExportTest::gridShortcutMatchesDigitsAndQt_data()
{
    // Runs of values n * step from `first`: every one compared with the text
    // found from the shortest digits, every 97th also with Qt's own text.
    QTest::addColumn<bool>("isFloat");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("count");
    QTest::newRow("centimetres around zero") << true << -800.0 << 0.01 << 160001;
    QTest::newRow("centimetres where the plain layout ends") << true << 99900.0 << 0.01 << 20001;
    QTest::newRow("millimetres") << true << 8150.0 << 0.001 << 84001;
    QTest::newRow("thousandths of a degree") << true << 0.0 << 0.001 << 360001;
    QTest::newRow("azimuths of 42 words over 15 degrees") << true << 0.0 << 15.0 / 41 << 985;
    QTest::newRow("where the plain layout starts") << true << 0.0 << 1e-6 << 300001;
    QTest::newRow("distances in metres") << false << -10.0 << 0.001 << 200001;
    QTest::newRow("distances at the shortcut's limit") << false << 2147483000.0 << 0.001 << 2000;
    QTest::newRow("sevenths, never on the grid") << true << -50.0 << 1.0 / 7 << 700;
}

void ExportTest::gridShortcutMatchesDigitsAndQt()
{
    QFETCH(bool, isFloat);
    QFETCH(double, first);
    QFETCH(double, step);
    QFETCH(int, count);
    for (int i = 0; i < count; ++i) {
        // The grid value as the writers meet it: the nearest float or double,
        // and its neighbours, which are on no grid.
        const double exact = first + i * step;
        for (int neighbour = -1; neighbour <= 1; ++neighbour) {
            QByteArray text, digits;
            double value = 0;
            if (isFloat) {
                const float f = std::nextafter(float(exact), neighbour < 0 ? -INFINITY : INFINITY);
                value = neighbour == 0 ? float(exact) : f;
                text = numbertext::shortest(float(value));
                digits = numbertext::shortestByDigits(float(value));
            } else {
                value = neighbour == 0 ? exact : std::nextafter(exact, neighbour < 0 ? -INFINITY : INFINITY);
                text = numbertext::shortest(value);
                digits = numbertext::shortestByDigits(value);
                if (neighbour == 0 && std::abs(step - 0.001) < 1e-12) {  // millimetres, written without dividing
                    char decimal[numbertext::kMaxLength];
                    const int64_t millimetres = std::llround(exact * 1000);
                    QCOMPARE(QByteArray(decimal, int(numbertext::writeDecimal(decimal, millimetres, 3) - decimal)),
                             numbertext::shortestByDigits(millimetres / 1000.0));
                }
            }
            if (text != digits)
                QFAIL(qPrintable(QString("%1: %2, not %3").arg(value, 0, 'g', 17).arg(text, digits)));
            // Qt's shortest text of the number the digits stand for is the same text.
            if (i % 97 == 0 && QString::number(std::strtod(text.constData(), nullptr), 'g',
                                               QLocale::FloatingPointShortest).toLatin1() != text)
                QFAIL(qPrintable(QString("%1: Qt differs").arg(QString(text))));
        }
    }
}

void ExportTest::everyFloatOfABinadeMatchesDigits_data()
{
    // Every third float from 2^exponent up to the next power of two.
    QTest::addColumn<int>("exponent");
    QTest::newRow("where the plain layout starts") << -14;
    QTest::newRow("azimuths beyond 8 degrees") << 3;
    QTest::newRow("where the plain layout ends") << 16;
}

void ExportTest::everyFloatOfABinadeMatchesDigits()
{
    QFETCH(int, exponent);
    const float first = std::ldexp(1.0f, exponent);
    uint32_t bits = 0;
    std::memcpy(&bits, &first, sizeof bits);
    for (uint32_t step = 0; step < (1u << 23); step += 3) {
        const uint32_t sign = step % 2 ? 0x80000000u : 0;
        const uint32_t valueBits = (bits + step) | sign;
        float value = 0;
        std::memcpy(&value, &valueBits, sizeof value);
        const QByteArray text = numbertext::shortest(value);
        const QByteArray digits = numbertext::shortestByDigits(value);
        if (text != digits)
            QFAIL(qPrintable(QString("%1, not %2").arg(QString(text), QString(digits))));
    }
}

void ExportTest::csvLines()
{
    lidar::LidarDataPoint_V4 frame;
    lidar::LidarPoint p{0.13f, -2.5f, 0.0f, 90.0f, 1234, 255, -1};
    frame.points[1].push_back(p);  // timestamp -1: none
    p.timestamp = 1716199872345;
    frame.points[0].push_back(p);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(&buffer);
        writer.writeHeader();
        writer.writeFrame(12, frame);
    }  // the destructor flushes
    QCOMPARE(buffer.data(),
             QByteArray("FrameNumbers,ID,Points_X,Points_Y,Points_Z,Azimuth,Distance,Intensity,Timestamp\n"
                        "12,0,0.13,-2.5,0,90,1.234,255,1716199872345\n"
                        "12,1,0.13,-2.5,0,90,1.234,255,-1\n"));
}

SCANDECK_TEST_MAIN(ExportTest)
#include "tst_export.moc"
