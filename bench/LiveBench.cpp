// scandeck-live-bench: the main window connected to a simulated lidar, the
// way a user connects it, measured. Prints figures; asserts nothing.
//
//   stream   The lidar streams for --seconds at --rate times the normal rate
//            (600 rpm), optionally with --drop/--corrupt/--junk faults,
//            while the window records it. Reports revolutions sent, frames
//            the decoder completed, frames the window drew and skipped, the
//            latency from a frame's completion to the end of its drawing,
//            the resident memory every five seconds and at the end, the CPU
//            time of the viewer (the sender's own time is taken out), and
//            the packets sent against those in the recording.
//   latency  At the normal rate: from the sending of the datagram that
//            completes a revolution to the end of drawing that frame.
//   open     A recording opened in the player: the first frame, the index
//            complete, 200 random jumps, X3 playback with a CSV export of
//            100 frames, and the memory of it all.
//
// Run under a display, e.g.
//   xvfb-run -a -s "-screen 0 1600x900x24" ./scandeck-live-bench stream --model Tern --rate 10
// The sender runs in this process on a thread of its own and sends to
// 127.0.0.1 only.

#include "LIdarFactory.h"
#include "LidarAnalysis.h"
#include "LiveFrameQueue.h"
#include "ExportDataDialog.h"
#include "OffinePlayWidget.h"
#include "RecordFile.h"
#include "ScanDeck.h"
#include "SimFaultInjector.h"
#include "SimModel.h"
#include "SimScanGenerator.h"
#include "UserMessages.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QCommandLineParser>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QHostAddress>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QUdpSocket>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <random>
#include <sys/resource.h>
#include <thread>
#include <vector>
#include <vtkObject.h>

namespace {

// Resident and peak resident memory of this process in MiB.
double statusMiB(const char* key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1.0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.mid(int(qstrlen(key))).trimmed().split(' ').value(0).toDouble() / 1024.0;
    }
    return -1.0;
}
double rssMiB() { return statusMiB("VmRSS:"); }
double peakMiB() { return statusMiB("VmHWM:"); }

double processCpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

double threadCpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec + t.tv_nsec / 1e9;
}

QString loadAverage()
{
    QFile file(QStringLiteral("/proc/loadavg"));
    file.open(QIODevice::ReadOnly);
    return QString::fromLatin1(file.readAll()).section(' ', 0, 2);
}

// A lidar head that sends its packets over loopback UDP in real time at a
// chosen rotation rate, with faults. It notes when each revolution's first
// packet (the one that completes the revolution before) leaves.
class PacedSender {
public:
    PacedSender(sim::Model model, double rpm, const sim::FaultOptions& faults, quint16 dataPort)
        : m_model(model), m_rpm(rpm), m_faults(faults), m_dataPort(dataPort)
    {
    }
    ~PacedSender() { stop(); }

    void start()
    {
        m_running = true;
        m_thread = std::thread([this] { run(); });
    }
    void stop()
    {
        m_running = false;
        if (m_thread.joinable())
            m_thread.join();
    }

    quint64 revolutions() const { return m_revolutions.load(); }
    quint64 packets() const { return m_packets.load(); }
    double cpuSeconds() const { return m_cpuSeconds.load(); }
    // Time (ns on the shared clock) the last revolution-completing packet
    // left at or before `nowNs`; -1 when none did.
    qint64 lastBoundaryBefore(qint64 nowNs) const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto it = m_boundaries.rbegin(); it != m_boundaries.rend(); ++it)
            if (*it <= nowNs)
                return *it;
        return -1;
    }
    static qint64 nowNs()
    {
        static QElapsedTimer clock = [] {
            QElapsedTimer c;
            c.start();
            return c;
        }();
        return clock.nsecsElapsed();
    }

private:
    void run()
    {
        QUdpSocket socket;
        socket.bind(QHostAddress(QHostAddress::LocalHost), 0);
        sim::ScanGenerator generator(m_model, 1, QDateTime::currentMSecsSinceEpoch() * 1000, 215);
        sim::FaultInjector faults(m_faults, 99);
        sim::DeviceState state = sim::initialDeviceState(m_rpm, sim::FilterMode::Normal);
        const double intervalNs = generator.packetIntervalUs(m_rpm) * 1000.0;
        const double cpuStart = threadCpuSeconds();
        double dueNs = double(nowNs());
        while (m_running) {
            const qint64 now = nowNs();
            if (double(now) < dueNs) {
                const qint64 waitUs = qint64((dueNs - double(now)) / 1000.0);
                if (waitUs > 200)
                    QThread::usleep(quint64(waitUs - 100));
                continue;
            }
            const bool boundary = generator.packetIndex() == 0;
            const QByteArray packet = generator.nextPacket(state);
            if (boundary) {
                std::lock_guard<std::mutex> lock(m_mutex);
                m_boundaries.push_back(nowNs());
                if (m_boundaries.size() > 4096)
                    m_boundaries.erase(m_boundaries.begin(), m_boundaries.begin() + 2048);
            }
            for (const QByteArray& chunk : faults.apply(packet))
                socket.writeDatagram(chunk, QHostAddress(QHostAddress::LocalHost), m_dataPort);
            ++m_packets;
            m_revolutions = quint64(generator.revolutions());
            dueNs += intervalNs;
            m_cpuSeconds = threadCpuSeconds() - cpuStart;
        }
        m_cpuSeconds = threadCpuSeconds() - cpuStart;
    }

    sim::Model m_model;
    double m_rpm;
    sim::FaultOptions m_faults;
    quint16 m_dataPort;
    std::thread m_thread;
    std::atomic<bool> m_running{false};
    std::atomic<quint64> m_revolutions{0}, m_packets{0};
    std::atomic<double> m_cpuSeconds{0.0};
    mutable std::mutex m_mutex;
    std::vector<qint64> m_boundaries;
};

quint16 freePort()
{
    QUdpSocket probe;
    probe.bind(QHostAddress(QHostAddress::LocalHost), 0);
    return probe.localPort();
}

// Runs the event loop for `ms`, sleeping while there is nothing to do, so
// that the waiting itself costs no CPU.
void pause(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Counters {
    std::atomic<quint64> decoded{0};  // frames the session sent (on its thread)
    quint64 drawn = 0;                // frames the window has drawn
    std::vector<double> latencyMs;    // completion to drawn, per drawn frame
};

// Connects the window to the sender's port and counts frames on both sides.
bool connectWindow(ScanDeck& window, const QString& model, quint16 dataPort, Counters& counters)
{
    NetworkParam link;
    link.lidarIp = link.dataIp = QStringLiteral("127.0.0.1");
    link.dataPort = dataPort;
    link.lidarPort = freePort();  // commands go nowhere
    for (int attempt = 0; attempt < 5; ++attempt) {
        if (window.ConnectNetworkLidar(model, link)) {
            LidarAnalysis* session = window.session().get();
            QObject::connect(session, &LidarAnalysis::SendleLidarDataSignal, session,
                             [&counters](const lidar::LidarDataPoint_V4&) { ++counters.decoded; },
                             Qt::DirectConnection);
            // After the window's own display slot: runs once it has drawn.
            QObject::connect(window.liveFrames(), &LiveFrameQueue::frameReady, &window, [&counters, &window] {
                ++counters.drawn;
                const ScanDeck::FrameTimings& t = window.lastFrameTimings();
                const qint64 drawNs = t.ownNs + t.viewerNs + t.renderNs;
                counters.latencyMs.push_back((window.liveFrames()->lastWaitNs() + drawNs) / 1e6);
            });
            return true;
        }
    }
    return false;
}

double percentile(std::vector<double> values, double q)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, size_t(q * double(values.size())))];
}

// The window as the screen shows it, half size, into a PNG.
void saveScreenshot(ScanDeck& window, const QString& path)
{
    const QPixmap shot = window.screen()->grabWindow(0, window.x(), window.y(), window.width(), window.height());
    if (!shot.scaledToWidth(window.width() / 2, Qt::SmoothTransformation).save(path))
        std::fprintf(stderr, "cannot save %s\n", qPrintable(path));
}

int runStream(ScanDeck& window, const QString& modelName, sim::Model model, double rate, double seconds,
              const sim::FaultOptions& faults, const QString& screenshot)
{
    const quint16 port = freePort();
    PacedSender sender(model, 600.0 * rate, faults, port);
    sender.start();
    Counters counters;
    if (!connectWindow(window, modelName, port, counters)) {
        std::fprintf(stderr, "no frame arrived\n");
        return 1;
    }
    LidarAnalysis* session = window.session().get();
    QTemporaryDir dir;
    const QString recording = dir.filePath(QStringLiteral("stream.txt"));
    const quint64 packetsAtStart = sender.packets();
    if (!session->StartSaveData(recording)) {
        std::fprintf(stderr, "cannot record to %s\n", qPrintable(recording));
        return 1;
    }
    const quint64 revolutionsAtStart = sender.revolutions();
    const quint64 decodedAtStart = counters.decoded.load();
    const quint64 drawnAtStart = counters.drawn;
    const double cpuAtStart = processCpuSeconds();
    const double senderCpuAtStart = sender.cpuSeconds();
    const double rssStart = rssMiB();
    double rssMax = rssStart;
    std::printf("stream %s x%.0f drop %.3f corrupt %.3f junk %.3f, %.0f s, load %s\n", qPrintable(modelName), rate,
                faults.drop, faults.corrupt, faults.junk, seconds, qPrintable(loadAverage()));
    std::printf("  t(s)  RSS(MiB)  sent  decoded  drawn  skipped  waiting  latency p50/max (ms)\n");
    QElapsedTimer clock;
    clock.start();
    int nextReport = 1;
    size_t latencyFrom = 0;
    while (clock.elapsed() < seconds * 1000) {
        pause(50);
        const double rss = rssMiB();
        rssMax = std::max(rssMax, rss);
        if (clock.elapsed() >= nextReport * 5000) {
            ++nextReport;
            const quint64 decoded = counters.decoded.load() - decodedAtStart;
            const quint64 drawn = counters.drawn - drawnAtStart;
            const std::vector<double> recent(counters.latencyMs.begin() + long(latencyFrom), counters.latencyMs.end());
            latencyFrom = counters.latencyMs.size();
            std::printf("  %4lld  %8.1f  %4llu  %7llu  %5llu  %7llu  %7d  %7.1f / %.1f\n", clock.elapsed() / 1000, rss,
                        (unsigned long long)(sender.revolutions() - revolutionsAtStart), (unsigned long long)decoded,
                        (unsigned long long)drawn, (unsigned long long)window.liveFrames()->skippedFrames(),
                        window.liveFrames()->waitingFrames(), percentile(recent, 0.5),
                        recent.empty() ? 0.0 : *std::max_element(recent.begin(), recent.end()));
            std::fflush(stdout);
        }
    }
    const double elapsed = clock.elapsed() / 1000.0;
    const quint64 sent = sender.revolutions() - revolutionsAtStart;
    const double viewerCpu = (processCpuSeconds() - cpuAtStart) - (sender.cpuSeconds() - senderCpuAtStart);
    if (!screenshot.isEmpty())
        saveScreenshot(window, screenshot);
    sender.stop();
    const quint64 packetsSent = sender.packets() - packetsAtStart;
    const quint64 decodedWhileSending = counters.decoded.load() - decodedAtStart;
    pause(1500);  // the last datagrams arrive, what waits is drawn
    session->EndSaveData();
    const quint64 decoded = counters.decoded.load() - decodedAtStart;
    const quint64 drawn = counters.drawn - drawnAtStart;
    const quint64 skipped = window.liveFrames()->skippedFrames();
    std::printf("  revolutions sent %llu, frames decoded %llu (%llu while sending), drawn %llu (%.1f%% of decoded), "
                "skipped by the display %llu, still waiting %d\n",
                (unsigned long long)sent, (unsigned long long)decoded, (unsigned long long)decodedWhileSending,
                (unsigned long long)drawn, decoded ? 100.0 * double(drawn) / double(decoded) : 0.0,
                (unsigned long long)skipped, window.liveFrames()->waitingFrames());
    std::printf("  latency from completion to drawn: median %.1f ms, p99 %.1f ms, max %.1f ms\n",
                percentile(counters.latencyMs, 0.5), percentile(counters.latencyMs, 0.99),
                percentile(counters.latencyMs, 1.0));
    std::printf("  RSS start %.1f MiB, max %.1f MiB (%+.1f), end %.1f MiB\n", rssStart, rssMax, rssMax - rssStart,
                rssMiB());
    std::printf("  viewer CPU %.1f%% of one core (%.1f s over %.1f s)\n", 100.0 * viewerCpu / elapsed, viewerCpu,
                elapsed);
    // The recording holds every packet that arrived, whatever the display
    // skipped (after the header elements of the model's recordings).
    const lidar::RecordLayout layout = lidar::scanRecordFile(recording);
    const qint64 header = 1 + lidar::recordPrefixElements(modelName);
    std::printf("  packets sent while recording %llu, in the recording %lld (%s)\n", (unsigned long long)packetsSent,
                qint64(layout.complete) - header, layout.isWhole() ? "complete file" : "FILE INCOMPLETE");
    return 0;
}

int runLatency(ScanDeck& window, const QString& modelName, sim::Model model, double seconds)
{
    const quint16 port = freePort();
    PacedSender sender(model, 600.0, sim::FaultOptions(), port);
    sender.start();
    Counters counters;
    if (!connectWindow(window, modelName, port, counters)) {
        std::fprintf(stderr, "no frame arrived\n");
        return 1;
    }
    std::vector<double> latenciesMs;
    ScanDeck::FrameTimings spent;  // summed over the frames measured
    const double periodMs = 100.0;
    QObject::connect(window.liveFrames(), &LiveFrameQueue::frameReady, &window, [&] {
                         const qint64 now = PacedSender::nowNs();
                         const qint64 sent = sender.lastBoundaryBefore(now);
                         if (sent >= 0 && (now - sent) / 1e6 < periodMs)
                             latenciesMs.push_back((now - sent) / 1e6);
                         const ScanDeck::FrameTimings& t = window.lastFrameTimings();
                         spent.ownNs += t.ownNs;
                         spent.viewerNs += t.viewerNs;
                         spent.renderNs += t.renderNs;
    });
    pause(1000);
    latenciesMs.clear();
    spent = ScanDeck::FrameTimings();
    const double cpuAtStart = processCpuSeconds();
    const double senderCpuAtStart = sender.cpuSeconds();
    QElapsedTimer clock;
    clock.start();
    pause(int(seconds * 1000));
    const double elapsed = clock.elapsed() / 1000.0;
    const double viewerCpu = (processCpuSeconds() - cpuAtStart) - (sender.cpuSeconds() - senderCpuAtStart);
    sender.stop();
    std::sort(latenciesMs.begin(), latenciesMs.end());
    const auto at = [&](double q) {
        return latenciesMs.empty() ? 0.0 : latenciesMs[std::min(latenciesMs.size() - 1, size_t(q * latenciesMs.size()))];
    };
    std::printf("latency %s at 600 rpm over %.0f s (load %s): %zu frames, median %.2f ms, p90 %.2f ms, p99 %.2f ms, "
                "max %.2f ms\n",
                qPrintable(modelName), seconds, qPrintable(loadAverage()), latenciesMs.size(), at(0.5), at(0.9),
                at(0.99), latenciesMs.empty() ? 0.0 : latenciesMs.back());
    const double frames = std::max<double>(1.0, double(latenciesMs.size()));
    std::printf("  per frame in the display slot: own work %.2f ms, viewer remove/add %.2f ms, render %.2f ms\n",
                spent.ownNs / 1e6 / frames, spent.viewerNs / 1e6 / frames, spent.renderNs / 1e6 / frames);
    std::printf("  viewer CPU %.1f%% of one core, RSS %.1f MiB\n", 100.0 * viewerCpu / elapsed, rssMiB());
    return 0;
}

// Runs the event loop until `done` or `limitMs` pass.
template <typename Done>
void waitFor(Done done, int limitMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < limitMs)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

// Opens a recording in the player as a user does and measures: the first
// frame on screen, the index's end, jumps to random frames through the
// slider and the frame box (each to the end of its drawing), playback at
// X3 against its 33 ms ticks with a CSV export of 100 frames running, and
// the memory all that took.
int runOpen(ScanDeck& window, const QString& path)
{
    auto* player = window.findChild<OffinePlayWidget*>(QStringLiteral("offline"));
    player->setOpenFileHook([path](const QString&, const QString&, const QString&) { return path; });
    qint64 shownAt = -1;
    std::vector<qint64> shows;  // ns, each frame's drawing finished
    QElapsedTimer clock;
    // After the display's own connection: this runs once the frame is drawn.
    QObject::connect(player, &OffinePlayWidget::SendLidarDataSignal, player, [&](const lidar::LidarDataPoint_V4&) {
        shows.push_back(clock.nsecsElapsed());
        if (shownAt < 0)
            shownAt = clock.nsecsElapsed();
    });
    const double rssBefore = rssMiB();
    clock.start();
    player->findChild<QPushButton*>(QStringLiteral("btn_open_file"))->click();
    waitFor([&] { return shownAt >= 0 || !player->isIndexing(); }, 60000);
    waitFor([&] { return !player->isIndexing(); }, 600000);
    const double indexedSeconds = clock.nsecsElapsed() / 1e9;
    const int frames = player->frameCount();
    std::printf("open %s (%.1f MiB): %d frames; first frame shown after %.3f s, index complete after %.2f s\n",
                qPrintable(path), QFile(path).size() / 1048576.0, frames, shownAt / 1e9, indexedSeconds);
    if (!player->isLoaded())
        return 1;

    // Jumps: half through the slider, half through the frame box.
    auto* slider = player->findChild<QSlider*>(QStringLiteral("horizontalSlider"));
    auto* box = player->findChild<QSpinBox*>(QStringLiteral("spinBox_progress"));
    std::vector<double> jumpMs;
    std::mt19937 random(7);
    std::uniform_int_distribution<int> anyFrame(1, frames);
    for (int i = 0; i < 200; ++i) {
        const int target = i == 0 ? frames : anyFrame(random);  // the last frame first
        const qint64 start = clock.nsecsElapsed();
        if (i % 2 == 0) {
            emit slider->sliderMoved(target);
        } else {
            box->findChild<QLineEdit*>()->setText(QString::number(target));
            QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
            QCoreApplication::sendEvent(box, &enter);
        }
        jumpMs.push_back((shows.back() - start) / 1e6);
        QCoreApplication::processEvents();
    }
    std::printf("  200 jumps (slider and frame box, each to the end of its drawing): p50 %.1f ms, p99 %.1f ms, "
                "max %.1f ms\n",
                percentile(jumpMs, 0.5), percentile(jumpMs, 0.99), percentile(jumpMs, 1.0));

    // X3 from the middle, with a CSV export of the next 100 frames.
    QTemporaryDir dir;
    window.setExportDialogHook([&](ExportDataDialog& dialog) {
        dialog.findChild<QSpinBox*>(QStringLiteral("spinBox_frame_count"))
            ->findChild<QLineEdit*>()->setText(QStringLiteral("100"));
        dialog.findChild<QLineEdit*>(QStringLiteral("lineEdit_path"))->setText(dir.filePath(QStringLiteral("x.csv")));
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        return dialog.result() == QDialog::Accepted;
    });
    emit slider->sliderMoved(frames / 2);
    player->findChild<QComboBox*>(QStringLiteral("comboBox"))->setCurrentIndex(3);
    player->findChild<QPushButton*>(QStringLiteral("btn_export_csv"))->click();
    shows.clear();
    player->findChild<QPushButton*>(QStringLiteral("btn_play"))->click();
    waitFor([&] { return shows.size() >= 301; }, 30000);
    player->findChild<QPushButton*>(QStringLiteral("btn_play"))->click();
    std::vector<double> ticks;
    int late = 0;
    for (size_t i = 1; i < shows.size(); ++i) {
        ticks.push_back((shows[i] - shows[i - 1]) / 1e6);
        late += ticks.back() > 33.0 * 1.5 ? 1 : 0;
    }
    const QFileInfo csv(dir.filePath(QStringLiteral("x.csv")));
    std::printf("  X3 for %zu ticks: interval p50 %.1f ms, p99 %.1f ms, %d later than 50 ms; CSV of 100 frames %s "
                "(%.1f MiB)\n",
                ticks.size(), percentile(ticks, 0.5), percentile(ticks, 0.99), late,
                csv.exists() ? "written" : "MISSING", csv.size() / 1048576.0);
    std::printf("  RSS %.1f -> %.1f MiB, peak %.1f MiB (%.1f above the window before opening)\n", rssBefore, rssMiB(),
                peakMiB(), peakMiB() - rssBefore);
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    vtkObject::SetGlobalWarningDisplay(0);
    ScanDeck::prepareGraphics();
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Measures the viewer against a simulated lidar."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("mode"), QStringLiteral("stream, latency or open"));
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("open: the recording"));
    parser.addOption({QStringLiteral("model"), QStringLiteral("Model class name."), QStringLiteral("name"),
                      QStringLiteral("Tern")});
    parser.addOption({QStringLiteral("rate"), QStringLiteral("Times the normal rate."), QStringLiteral("x"),
                      QStringLiteral("1")});
    parser.addOption({QStringLiteral("seconds"), QStringLiteral("Duration."), QStringLiteral("s"),
                      QStringLiteral("30")});
    parser.addOption({QStringLiteral("drop"), QStringLiteral("Packet loss probability."), QStringLiteral("p"),
                      QStringLiteral("0")});
    parser.addOption({QStringLiteral("corrupt"), QStringLiteral("Damaged packet probability."), QStringLiteral("p"),
                      QStringLiteral("0")});
    parser.addOption({QStringLiteral("junk"), QStringLiteral("Junk before a packet probability."),
                      QStringLiteral("p"), QStringLiteral("0")});
    parser.addOption({QStringLiteral("screenshot"), QStringLiteral("stream: save the window at the end (PNG)."),
                      QStringLiteral("file")});
    parser.process(app);
    const QStringList args = parser.positionalArguments();
    const QString mode = args.value(0);
    const QString modelName = parser.value(QStringLiteral("model"));
    sim::Model model;
    if (!sim::modelFromName(modelName, &model)) {
        std::fprintf(stderr, "unknown model %s\n", qPrintable(modelName));
        return 2;
    }
    sim::FaultOptions faults;
    faults.drop = parser.value(QStringLiteral("drop")).toDouble();
    faults.corrupt = parser.value(QStringLiteral("corrupt")).toDouble();
    faults.junk = parser.value(QStringLiteral("junk")).toDouble();

    // A warning from the session must not stop the measurement.
    usermessages::setHandler([](QWidget*, const UserMessage& m) {
        std::fprintf(stderr, "message: %s: %s\n", qPrintable(m.title), qPrintable(m.text));
        return QMessageBox::Ok;
    });
    int status = 2;
    {
        ScanDeck window;
        window.waitUntilWired();
        window.resize(1600, 900);
        window.show();
        pause(500);
        if (mode == QLatin1String("stream"))
            status = runStream(window, modelName, model, parser.value(QStringLiteral("rate")).toDouble(),
                               parser.value(QStringLiteral("seconds")).toDouble(), faults,
                               parser.value(QStringLiteral("screenshot")));
        else if (mode == QLatin1String("latency"))
            status = runLatency(window, modelName, model, parser.value(QStringLiteral("seconds")).toDouble());
        else if (mode == QLatin1String("open") && args.size() == 2)
            status = runOpen(window, args.value(1));
        else
            parser.showHelp(2);
        LIdarFactory::GetInstance()->Shutdown();
    }
    return status;
}
