// The display pipeline without a window: what the view's settings make of
// a frame. Rounding to the centimetre, the angle range (inclusive, NaN never
// in it, reversed holding nothing), the colours of each mode, the table's
// rows (how many, how precise, the box's when it holds points, none for an
// empty frame), the box's points, cloud and readouts, and the frame a CSV
// export writes.

#include "FramePipeline.h"

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <QtTest>
#include <cmath>
#include <limits>

using Frame = lidar::LidarDataPoint_V4;

namespace {

struct Spec {
    int id;
    float x, y, azimuth;
    int32_t intensity;
};

Frame frameOf(std::initializer_list<Spec> specs)
{
    Frame frame;
    for (const Spec& s : specs) {
        lidar::LidarPoint p;
        p.x = s.x, p.y = s.y, p.azimuth = s.azimuth, p.intensity = s.intensity;
        p.distance = int32_t(std::round(std::sqrt(s.x * s.x + s.y * s.y) * 1000));
        frame.points[s.id].push_back(p);
    }
    return frame;
}

// n points on a 5 m circle, 360/n degrees apart, under ID 0.
Frame ring(int n)
{
    Frame frame;
    for (int i = 0; i < n; ++i) {
        const float azimuth = 360.0f * float(i) / float(n), rad = azimuth * float(M_PI / 180.0);
        lidar::LidarPoint p;
        p.azimuth = azimuth, p.x = std::sin(rad) * 5.0f, p.y = std::cos(rad) * 5.0f, p.distance = 5000;
        frame.points[0].push_back(p);
    }
    return frame;
}

QStringList column(const display::FrameView& view, int c)
{
    QStringList cells;
    for (const QStringList& row : view.tableRows)
        cells << row.value(c);
    return cells;
}

QList<QList<int>> colours(const pcl::PointCloud<pcl::PointXYZRGB>& cloud)
{
    QList<QList<int>> out;
    for (const auto& p : cloud.points)
        out << QList<int>{p.r, p.g, p.b};
    return out;
}

display::ViewSettings boxed(float minX, float minY, float maxX, float maxY)
{
    display::ViewSettings settings;
    settings.boxActive = true;
    settings.box = {{minX, minY, -1.0f, 1.0f}, {maxX, maxY, 1.0f, 1.0f}};
    return settings;
}

}  // namespace

class FramePipelineTest : public QObject {
    Q_OBJECT
private slots:
    void roundingAndAngleRange();
    void tableRows_data();
    void tableRows();
    void colourModes_data();
    void colourModes();
    void boxSelection();
};

void FramePipelineTest::roundingAndAngleRange()
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    display::FrameView view = display::frameView(
        frameOf({{0, 0.125f, -0.125f, 0.0f, 10}, {0, 1.0f, 1.0f, 360.0f, 10}, {0, 1.0f, 1.0f, 360.01f, 10},
                 {0, 2.0f, 2.0f, nan, 10}, {3, 1.234f, -1.235f, 45.0f, 10}}),
        display::ViewSettings());
    QCOMPARE(int(view.cloud->size()), 3);  // 360.01 and NaN lie outside 0..360
    QCOMPARE(view.cloud->points[0].x, 0.13f);
    QCOMPARE(view.cloud->points[0].y, -0.12f);  // halves go up, negatives too
    QCOMPARE(view.cloud->points[2].y, -1.23f);
    // The rounded frame keeps every point, rounded; it is what CSV writes.
    QCOMPARE(int(view.frame.pointCount()), 5);
    QCOMPARE(view.frame.points[3][0].x, 1.23f);
    QCOMPARE(&view.csvFrame(), &view.frame);

    display::ViewSettings range;
    range.minAngle = 90, range.maxAngle = 180;
    QCOMPARE(int(display::frameView(ring(360), range).cloud->size()), 91);  // both ends drawn
    range.minAngle = 200;
    QCOMPARE(int(display::frameView(ring(360), range).cloud->size()), 0);  // reversed: nothing
}

void FramePipelineTest::tableRows_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("precision");
    QTest::addColumn<int>("points");
    QTest::addColumn<QStringList>("azimuths");  // column 2; empty: the table is left as it was
    QTest::newRow("the first rows, two decimals") << 3 << 2 << 50 << QStringList{"0.00", "7.20", "14.40"};
    QTest::newRow("no decimals") << 5 << 0 << 50 << QStringList{"0", "7", "14", "22", "29"};
    QTest::newRow("more rows than points") << 30 << 1 << 4 << QStringList{"0.0", "90.0", "180.0", "270.0"};
    QTest::newRow("an empty frame leaves the table") << 30 << 2 << 0 << QStringList{};
}

void FramePipelineTest::tableRows()
{
    QFETCH(int, rows);
    QFETCH(int, precision);
    QFETCH(int, points);
    QFETCH(QStringList, azimuths);
    display::ViewSettings settings;
    settings.tableRows = rows;
    settings.precision = precision;
    const display::FrameView view = display::frameView(points ? ring(points) : Frame(), settings);
    QCOMPARE(view.tableChanges, !azimuths.isEmpty());
    QCOMPARE(column(view, 2), azimuths);
    if (points == 4)  // x and y always with three decimals, z with the precision
        QCOMPARE(view.tableRows[1][1], QStringLiteral("5.000,   0.000,   0.0"));
}

void FramePipelineTest::colourModes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QList<QList<int>>>("expected");
    // Intensity 80 at 10 degrees, 31 at 100, 128 at 200, 255 at 300, 0 at 359.
    QTest::newRow("Intensity, with its wrap-arounds")
        << 0 << QList<QList<int>>{{0, 255, 0}, {0, 248, 255}, {255, 254, 0}, {255, 0, 0}, {0, 0, 255}};
    QTest::newRow("Azimuth") << 1
                             << QList<QList<int>>{{0, 255, 255}, {0, 125, 192}, {0, 255, 0}, {255, 255, 0}, {255, 255, 0}};
    const QList<int> white{255, 255, 255};
    QTest::newRow("Solid") << 2 << QList<QList<int>>{white, white, white, white, white};
}

void FramePipelineTest::colourModes()
{
    QFETCH(int, mode);
    QFETCH(QList<QList<int>>, expected);
    display::ViewSettings settings;
    settings.colourMode = mode;
    const display::FrameView view = display::frameView(
        frameOf({{0, 1, 0, 10, 80}, {0, 1, 0, 100, 31}, {1, 1, 0, 200, 128}, {1, 1, 0, 300, 255}, {1, 1, 0, 359, 0}}),
        settings);
    QCOMPARE(colours(*view.cloud), expected);
}

// Inside the box after rounding: drawn white, listed, measured, exported.
void FramePipelineTest::boxSelection()
{
    const display::ViewSettings settings = boxed(0.0f, 1.0f, 0.5f, 1.5f);
    display::FrameView view = display::frameView(
        frameOf({{0, 0.004f, 1.0f, 0, 10}, {0, 3.0f, 3.0f, 45, 10}, {2, 0.5f, 1.5f, 18, 10}, {2, 0.506f, 1.2f, 22, 10}}),
        settings);
    QCOMPARE(int(view.cloud->size()), 4);
    QCOMPARE(colours(*view.boxCloud), (QList<QList<int>>{{255, 255, 255}, {255, 255, 255}}));
    QCOMPARE(column(view, 0), (QStringList{"0", "2"}));  // every box point, not the frame's first rows
    QVERIFY(view.selection.any);
    QCOMPARE(view.selection.deltaX, 0.5f);
    QCOMPARE(view.selection.deltaY, 0.5f);
    QCOMPARE(view.selection.deltaDistance, double(view.boxFrame.points[2][0].distance - view.boxFrame.points[0][0].distance));
    QCOMPARE(int(view.csvFrame().pointCount()), 2);

    // Nothing inside: the frame's rows, a box readout of no value.
    view = display::frameView(frameOf({{0, 3.0f, 3.0f, 45, 10}, {1, 4.0f, 4.0f, 45, 10}}), settings);
    QCOMPARE(int(view.boxCloud->size()), 0);
    QCOMPARE(column(view, 0), (QStringList{"0", "1"}));
    QVERIFY(!view.selection.any);
    QCOMPARE(int(view.csvFrame().pointCount()), 0);

    // An edited box on the frame shown: only the box's part is made anew.
    const display::FrameView shown = display::frameView(ring(36), display::ViewSettings());
    const display::FrameView edited = display::boxView(shown.frame, boxed(-1.0f, 4.0f, 1.0f, 6.0f));
    QCOMPARE(int(edited.boxCloud->size()), 3);  // 350, 0 and 10 degrees
    QCOMPARE(column(edited, 2), (QStringList{"0.00", "10.00", "350.00"}));
}

QTEST_GUILESS_MAIN(FramePipelineTest)
#include "tst_frame_pipeline.moc"
