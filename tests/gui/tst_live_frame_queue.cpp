// The live display's choice of frame, on a simulated clock: frames arrive at
// a lidar's pace, a renderer that takes a set time per frame draws them, and
// the queue decides which to draw and which to skip. No real time passes.

#include "LiveFrameQueue.h"
#include "Tern.h"

#include <QtTest>

#include <algorithm>

namespace {

constexpr qint64 kMs = 1000000;

// A session's frames into the queue, and a renderer that is busy for
// `drawMs` after each frame it is handed. Frames are told apart by their
// motor speed: 0, 1, 2, ...
struct Simulation {
    qint64 nowNs = 0;
    Tern session;
    LiveFrameQueue queue{nullptr, [this] { return nowNs; }};
    QList<int> drawn, skipped;
    QList<qint64> latencyNs;  // arrival to the end of drawing, per drawn frame
    int maxWaiting = 0;

    // Frames arrive `together` at a time, every `periodMs`; the renderer
    // takes `drawMs` a frame. Runs for `frames` frames and until all are out.
    void run(int periodMs, int together, int drawMs, int frames)
    {
        const QMetaObject::Connection attached = queue.attach(&session);
        QObject::connect(&queue, &LiveFrameQueue::frameSkipped, &queue,
                         [this](const lidar::LidarDataPoint_V4& f) { skipped << f.motorSpeed; });
        qint64 busyUntilNs = 0;
        QObject::connect(&queue, &LiveFrameQueue::frameReady, &queue, [&](const lidar::LidarDataPoint_V4& f) {
            drawn << f.motorSpeed;
            busyUntilNs = nowNs + drawMs * kMs;
            latencyNs << queue.lastWaitNs() + drawMs * kMs;
        });
        int sent = 0;
        for (qint64 ms = 0; sent < frames || drawn.size() + skipped.size() < frames; ++ms) {
            nowNs = ms * kMs;
            if (sent < frames && ms % periodMs == 0) {
                for (int i = 0; i < together && sent < frames; ++i) {
                    lidar::LidarDataPoint_V4 frame;
                    frame.motorSpeed = sent++;
                    emit session.SendleLidarDataSignal(frame);
                }
            }
            maxWaiting = std::max(maxWaiting, queue.waitingFrames());
            // The renderer is free: the event loop hands it the next frame.
            if (nowNs >= busyUntilNs)
                QCoreApplication::sendPostedEvents(&queue, QEvent::MetaCall);
            QVERIFY(ms < 600000);
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
    QTest::addColumn<bool>("allDrawn");

    // Drawing keeps up: every frame is drawn as soon as it arrives.
    QTest::newRow("normal rate") << 100 << 1 << 30 << true;
    QTest::newRow("drawing just keeps up") << 40 << 1 << 39 << true;
    // Frames that arrive together (the session's thread held up) are all drawn.
    QTest::newRow("arriving together") << 200 << 3 << 30 << true;
    // Ten times the rate on a slow renderer: the newest frame is drawn.
    QTest::newRow("ten times, slow renderer") << 10 << 1 << 40 << false;
    QTest::newRow("ten times, very slow renderer") << 10 << 1 << 250 << false;
    QTest::newRow("slightly too slow") << 30 << 1 << 35 << false;
    QTest::newRow("bursts on a slow renderer") << 20 << 5 << 60 << false;
}

void LiveFrameQueueTest::choiceOfFrame()
{
    QFETCH(int, periodMs);
    QFETCH(int, together);
    QFETCH(int, drawMs);
    QFETCH(bool, allDrawn);
    const int frames = 600;
    Simulation sim;
    sim.run(periodMs, together, drawMs, frames);
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

    const qint64 worstNs = *std::max_element(sim.latencyNs.begin(), sim.latencyNs.end());
    if (allDrawn) {
        QCOMPARE(sim.drawn, upTo(frames));
        // Only the frames that came together wait for each other.
        QVERIFY2(worstNs <= together * drawMs * kMs, qPrintable(QString::number(worstNs / kMs)));
        return;
    }
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
