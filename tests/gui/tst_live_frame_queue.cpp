// The live display's choice of frame, on a simulated clock: frames arrive at
// a lidar's pace, a renderer that takes a set time per frame draws them, and
// the queue decides which to draw and which to skip. No real time passes.

#include "LiveFrameQueue.h"
#include "Tern.h"

#include <QtTest>

#include <algorithm>

namespace {

constexpr qint64 kMs = 1000000;

// A session's frames into the queue, and a renderer that takes `drawMs`
// for each frame it is handed, during which the session's frames go on
// arriving. Frames are told apart by their motor speed: 0, 1, 2, ...
struct Simulation {
    qint64 nowNs = 0;
    Tern session;
    LiveFrameQueue queue{nullptr, [this] { return nowNs; }};
    QList<int> drawn, skipped;
    QList<qint64> latencyNs;  // arrival to the end of drawing, per drawn frame
    int maxWaiting = 0;  // once the rule has seen a few drawings
    int sent = 0;

    // Frames arrive `together` at a time every `periodMs` (`slowFirstMs` for
    // the first drawing, as after connecting); `frames` in all.
    void run(int periodMs, int together, int drawMs, int frames, int slowFirstMs)
    {
        const QMetaObject::Connection attached = queue.attach(&session);
        QObject::connect(&queue, &LiveFrameQueue::frameSkipped, &queue,
                         [this](const lidar::LidarDataPoint_V4& f) { skipped << f.motorSpeed; });
        const auto until = [&](qint64 endNs) {
            // Time passes in steps of a millisecond; the lidar sends on.
            while (nowNs < endNs) {
                nowNs += kMs;
                const qint64 ms = nowNs / kMs;
                for (int i = 0; i < together && sent < frames && ms % periodMs == 0; ++i) {
                    lidar::LidarDataPoint_V4 frame;
                    frame.motorSpeed = sent++;
                    emit session.SendleLidarDataSignal(frame);
                }
                if (drawn.size() > 8)  // once the first drawings are behind
                    maxWaiting = std::max(maxWaiting, queue.waitingFrames());
            }
        };
        QObject::connect(&queue, &LiveFrameQueue::frameReady, &queue, [&](const lidar::LidarDataPoint_V4& f) {
            drawn << f.motorSpeed;
            const int ms = drawn.size() == 1 && slowFirstMs ? slowFirstMs : drawMs;
            until(nowNs + ms * kMs);
            latencyNs << queue.lastWaitNs() + ms * kMs;
        });
        while (sent < frames || drawn.size() + skipped.size() < frames) {
            until(nowNs + kMs);
            // The window's event loop hands the renderer the next frame.
            QCoreApplication::sendPostedEvents(&queue, QEvent::MetaCall);
            QVERIFY(nowNs < 600000 * kMs);
        }
        QObject::disconnect(attached);
    }
};

QList<int> upTo(int n)
{
    QList<int> all;
    for (int i = 0; i < n; ++i)
        all << i;
    return all;
}

}  // namespace

class LiveFrameQueueTest : public QObject {
    Q_OBJECT
private slots:
    void choiceOfFrame_data();
    void choiceOfFrame();
};

void LiveFrameQueueTest::choiceOfFrame_data()
{
    QTest::addColumn<int>("periodMs");
    QTest::addColumn<int>("together");
    QTest::addColumn<int>("drawMs");
    QTest::addColumn<int>("slowFirstMs");  // the first drawing, 0: like the others
    QTest::addColumn<bool>("allDrawn");

    // Drawing keeps up: every frame is drawn as soon as it arrives.
    QTest::newRow("normal rate") << 100 << 1 << 5 << 0 << true;
    QTest::newRow("drawing just keeps up") << 40 << 1 << 39 << 0 << true;
    // Frames that arrive together (the session's thread held up) are all drawn.
    QTest::newRow("arriving together") << 200 << 3 << 20 << 0 << true;
    // The first drawing after connecting sets the view up and takes long:
    // the frames that waited behind it are drawn, none skipped.
    QTest::newRow("slow first drawing") << 100 << 1 << 5 << 450 << true;
    // Ten times the rate on a slow renderer: the newest frame is drawn.
    QTest::newRow("ten times, slow renderer") << 10 << 1 << 40 << 0 << false;
    QTest::newRow("ten times, very slow renderer") << 10 << 1 << 250 << 0 << false;
    QTest::newRow("ten times, slow first drawing") << 10 << 1 << 20 << 450 << false;
    QTest::newRow("slightly too slow") << 30 << 1 << 35 << 0 << false;
    QTest::newRow("bursts on a slow renderer") << 20 << 5 << 60 << 0 << false;
}

void LiveFrameQueueTest::choiceOfFrame()
{
    QFETCH(int, periodMs);
    QFETCH(int, together);
    QFETCH(int, drawMs);
    QFETCH(int, slowFirstMs);
    QFETCH(bool, allDrawn);
    const int frames = 600;
    Simulation sim;
    sim.run(periodMs, together, drawMs, frames, slowFirstMs);
    if (QTest::currentTestFailed())
        return;

    // Every frame comes out exactly once, drawn or skipped, each kind in
    // order (a CSV export sees all of them), and the skipped are counted.
    QList<int> all = sim.drawn + sim.skipped;
    std::sort(all.begin(), all.end());
    QCOMPARE(all, upTo(frames));
    QVERIFY(std::is_sorted(sim.drawn.begin(), sim.drawn.end()));
    QVERIFY(std::is_sorted(sim.skipped.begin(), sim.skipped.end()));
    QCOMPARE(sim.queue.skippedFrames(), quint64(sim.skipped.size()));
    // The last frame is always drawn: the view ends on the newest.
    QCOMPARE(sim.drawn.last(), frames - 1);

    if (allDrawn) {
        QCOMPARE(sim.drawn, upTo(frames));
        // Only the frames that came together, or behind the first, wait.
        const qint64 worstNs = *std::max_element(sim.latencyNs.begin() + 1, sim.latencyNs.end());
        QVERIFY2(worstNs <= (together * drawMs + slowFirstMs + 2) * kMs, qPrintable(QString::number(worstNs / kMs)));
        return;
    }
    // Once the rule has seen a few drawings (the slow first one passes).
    const qint64 worstNs = *std::max_element(sim.latencyNs.begin() + 8, sim.latencyNs.end());
    QVERIFY(!sim.skipped.isEmpty());
    // Behind, what is drawn is about one drawing time old (at most two and
    // a little), and no more than about a drawing time's worth waits.
    const qint64 boundNs = (2 * drawMs + 60) * kMs;
    QVERIFY2(worstNs <= boundNs, qPrintable(QStringLiteral("%1 ms > %2 ms").arg(worstNs / kMs).arg(boundNs / kMs)));
    const int waitingBound = together * ((drawMs + 60) / periodMs + 2);
    QVERIFY2(sim.maxWaiting <= waitingBound, qPrintable(QString::number(sim.maxWaiting)));
}

QTEST_GUILESS_MAIN(LiveFrameQueueTest)
#include "tst_live_frame_queue.moc"
