// The relay between a session's thread and the display: every frame, in
// order, while the display keeps up; never more than a few waiting when it
// does not, with the rest counted as dropped.

#include "FrameRelay.h"
#include "LIdarFactory.h"

#include <QtTest>

namespace {

lidar::LidarDataPoint_V4 numbered(int n)
{
    lidar::LidarDataPoint_V4 frame;
    frame.motorSpeed = n;
    frame.points[0].push_back(lidar::LidarPoint{});
    return frame;
}

}  // namespace

class FrameRelayTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        session = LIdarFactory::GetInstance()->ChangeLidar(QStringLiteral("Tern"));
        QVERIFY(session);
        QVERIFY(session->thread() != thread());
    }
    void cleanupTestCase()
    {
        session.reset();
        LIdarFactory::GetInstance()->Shutdown();
    }
    void keepsUpAndFallsBehind_data();
    void keepsUpAndFallsBehind();
    void reattachingDoesNotDoubleFrames();

private:
    QList<int> shown;
    std::shared_ptr<LidarAnalysis> session;
};

void FrameRelayTest::keepsUpAndFallsBehind_data()
{
    QTest::addColumn<int>("burst");       // frames the session sends before the display runs
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("one at a time") << 1 << QList<int>{1};
    QTest::newRow("as many as may wait") << 3 << QList<int>{1, 2, 3};
    QTest::newRow("more than may wait") << 50 << QList<int>{1, 2, 3};
}

void FrameRelayTest::keepsUpAndFallsBehind()
{
    QFETCH(int, burst);
    QFETCH(QList<int>, expected);
    FrameRelay relay;
    QList<int> got;
    connect(&relay, &FrameRelay::frameReady, this, [&got](const lidar::LidarDataPoint_V4& f) { got << f.motorSpeed; });
    QVERIFY(relay.attach(session.get()));

    // A display that keeps up sees every frame.
    for (int round = 0; round < 3; ++round) {
        got.clear();
        LidarAnalysis* s = session.get();
        QMetaObject::invokeMethod(
            s,
            [s, burst] {
                for (int n = 1; n <= burst; ++n)
                    emit s->SendleLidarDataSignal(numbered(n));
            },
            Qt::BlockingQueuedConnection);
        QTRY_COMPARE_WITH_TIMEOUT(got, expected, 2000);
        QCoreApplication::processEvents();
        QCOMPARE(got, expected);  // nothing more was waiting
    }
    QCOMPARE(relay.droppedFrames(), quint64(3 * (burst - expected.size())));
}

void FrameRelayTest::reattachingDoesNotDoubleFrames()
{
    FrameRelay relay;
    int count = 0;
    connect(&relay, &FrameRelay::frameReady, this, [&count] { ++count; });
    QVERIFY(relay.attach(session.get()));
    relay.attach(session.get());  // the same session connected again
    LidarAnalysis* s = session.get();
    QMetaObject::invokeMethod(s, [s] { emit s->SendleLidarDataSignal(numbered(1)); }, Qt::BlockingQueuedConnection);
    QTRY_COMPARE_WITH_TIMEOUT(count, 1, 2000);
    QTest::qWait(50);
    QCOMPARE(count, 1);
}

QTEST_GUILESS_MAIN(FrameRelayTest)
#include "tst_live_frame_relay.moc"
