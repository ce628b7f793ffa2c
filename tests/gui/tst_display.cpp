// The display's building blocks without a window: colours, rounding and
// box selection, the cloud fill with its angle range and row limit, and the
// texts of a table row.

#include "FrameCloud.h"
#include "FrameSelection.h"
#include "PointColouring.h"
#include "PointRounding.h"
#include "PointTableRow.h"

#include <QtTest>
#include <cmath>
#include <limits>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

Q_DECLARE_METATYPE(display::Rgb)

namespace {

lidar::LidarPoint point(float x, float y, float azimuth, int32_t distance = 1000, int32_t intensity = 0)
{
    lidar::LidarPoint p;
    p.x = x;
    p.y = y;
    p.azimuth = azimuth;
    p.distance = distance;
    p.intensity = intensity;
    return p;
}

using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;

}  // namespace

class DisplayTest : public QObject {
    Q_OBJECT
private slots:
    void intensityRamp_data();
    void intensityRamp();
    void azimuthAndModeColours_data();
    void azimuthAndModeColours();
    void rounding_data();
    void rounding();
    void boxSelection();
    void angleRange_data();
    void angleRange();
    void rowLimit_data();
    void rowLimit();
    void fillColoursAndDistances();
    void extentIgnoresNonFinitePoints();
    void tableRowTexts_data();
    void tableRowTexts();
};

void DisplayTest::intensityRamp_data()
{
    QTest::addColumn<int>("intensity");
    QTest::addColumn<int>("r");
    QTest::addColumn<int>("g");
    QTest::addColumn<int>("b");
    QTest::newRow("0 blue") << 0 << 0 << 0 << 255;
    QTest::newRow("31") << 31 << 0 << 248 << 255;
    QTest::newRow("32 cyan") << 32 << 0 << 255 << 255;
    QTest::newRow("63") << 63 << 0 << 255 << 131;
    QTest::newRow("64 starts at red 192") << 64 << 192 << 255 << 0;
    QTest::newRow("79 last before wrap") << 79 << 252 << 255 << 0;
    QTest::newRow("80 wraps to red 0") << 80 << 0 << 255 << 0;
    QTest::newRow("127") << 127 << 188 << 255 << 0;
    QTest::newRow("128 wraps to green 254") << 128 << 255 << 254 << 0;
    QTest::newRow("200") << 200 << 255 << 110 << 0;
    QTest::newRow("255 red") << 255 << 255 << 0 << 0;
    QTest::newRow("negative wraps") << -1 << 0 << 248 << 255;
    QTest::newRow("large keeps low byte") << 100000 << 255 << 190 << 0;
    QTest::newRow("int32 max does not overflow") << std::numeric_limits<int32_t>::max() << 255 << 0 << 0;
}

void DisplayTest::intensityRamp()
{
    QFETCH(int, intensity);
    QFETCH(int, r);
    QFETCH(int, g);
    QFETCH(int, b);
    const display::Rgb c = display::intensityColour(intensity);
    QCOMPARE(int(c.r), r);
    QCOMPARE(int(c.g), g);
    QCOMPARE(int(c.b), b);
    // The mode routes to the same ramp.
    QVERIFY(display::modeColour(display::IntensityColours, point(0, 0, 0, 0, intensity)) == c);
}

void DisplayTest::azimuthAndModeColours_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<float>("azimuth");
    QTest::addColumn<display::Rgb>("colour");
    const display::Rgb cyan{0, 255, 255}, blue{0, 125, 192}, green{0, 255, 0}, yellow{255, 255, 0};
    QTest::newRow("0") << 1 << 0.0f << cyan;
    QTest::newRow("89.99") << 1 << 89.99f << cyan;
    QTest::newRow("90") << 1 << 90.0f << blue;
    QTest::newRow("179.9") << 1 << 179.9f << blue;
    QTest::newRow("180") << 1 << 180.0f << green;
    QTest::newRow("270") << 1 << 270.0f << yellow;
    QTest::newRow("360") << 1 << 360.0f << yellow;
    QTest::newRow("unset -1") << 1 << -1.0f << cyan;
    QTest::newRow("solid is white") << 2 << 45.0f << display::Rgb{255, 255, 255};
    QTest::newRow("unknown mode is black") << 3 << 45.0f << display::Rgb{0, 0, 0};
    QTest::newRow("no selection is black") << -1 << 45.0f << display::Rgb{0, 0, 0};
}

void DisplayTest::azimuthAndModeColours()
{
    QFETCH(int, mode);
    QFETCH(float, azimuth);
    QFETCH(display::Rgb, colour);
    const display::Rgb c = display::modeColour(mode, point(0, 0, azimuth, 0, 200));
    QCOMPARE(int(c.r), int(colour.r));
    QCOMPARE(int(c.g), int(colour.g));
    QCOMPARE(int(c.b), int(colour.b));
}

void DisplayTest::rounding_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<float>("rounded");
    QTest::newRow("half up") << 0.125f << 0.13f;
    QTest::newRow("negative half up") << -0.125f << -0.12f;
    QTest::newRow("down") << 1.234f << 1.23f;
    QTest::newRow("negative") << -1.235f << -1.23f;
    // 2.675f lies just below 2.675; times 100 in single precision it is 267.5.
    QTest::newRow("single precision product") << 2.675f << 2.68f;
    QTest::newRow("zero") << 0.0f << 0.0f;
    QTest::newRow("large") << 1234.5678f << 1234.57f;
}

void DisplayTest::rounding()
{
    QFETCH(float, value);
    QFETCH(float, rounded);
    lidar::LidarDataPoint_V4 frame;
    lidar::LidarPoint p = point(value, -value, 10);
    p.z = value;
    frame.points[3].push_back(p);
    display::roundAndSelect(frame, nullptr);
    const lidar::LidarPoint& r = frame.points[3][0];
    QCOMPARE(r.x, rounded);
    QCOMPARE(r.z, rounded);
    QCOMPARE(r.y, display::roundCoordinate(-value));
    QCOMPARE(r.azimuth, 10.0f);  // only coordinates change
}

void DisplayTest::boxSelection()
{
    lidar::LidarDataPoint_V4 frame;
    frame.ambient = 7;
    frame.motorSpeed = 600;
    frame.dateTime = QStringLiteral("2024-1-31 14:5:9:120");
    frame.points[0] = {point(0.5f, 0.5f, 45), point(2.0f, 0.5f, 76), point(1.004f, 0.0f, 90)};
    frame.points[4] = {point(0.2f, 0.9f, 12), point(-0.1f, 0.5f, 350)};
    frame.points[9] = {point(5.0f, 5.0f, 45)};

    const BoxRange box{{0.0f, 0.0f, 0.0f, 1.0f}, {1.0f, 1.0f, 0.0f, 1.0f}};
    const lidar::LidarDataPoint_V4 selected = display::roundAndSelect(frame, &box);

    // Inclusive bounds on the rounded value: 1.004 is tested as 1.00.
    QCOMPARE(selected.points.keys(), (QList<int32_t>{0, 4}));
    QCOMPARE(int(selected.points[0].size()), 2);
    QCOMPARE(selected.points[0][1].x, 1.0f);
    QCOMPARE(int(selected.points[4].size()), 1);
    QCOMPARE(selected.points[4][0].azimuth, 12.0f);
    QCOMPARE(selected.ambient, 7);
    QCOMPARE(selected.motorSpeed, 600);
    QCOMPARE(selected.dateTime, frame.dateTime);
    // The frame itself keeps every point, rounded.
    QCOMPARE(int(frame.pointCount()), 6);
    QCOMPARE(frame.points[0][2].x, 1.0f);

    // The same box over the already rounded frame selects the same points.
    const lidar::LidarDataPoint_V4 again = display::selectInBox(frame, box);
    QCOMPARE(again.points.keys(), selected.points.keys());
    QCOMPARE(int(again.pointCount()), 3);

    // A box with min above max on one axis holds nothing.
    const BoxRange reversed{{1.0f, 0.0f, 0.0f, 1.0f}, {0.0f, 1.0f, 0.0f, 1.0f}};
    QVERIFY(display::selectInBox(frame, reversed).points.isEmpty());
}

void DisplayTest::angleRange_data()
{
    QTest::addColumn<float>("minAngle");
    QTest::addColumn<float>("maxAngle");
    QTest::addColumn<float>("azimuth");
    QTest::addColumn<bool>("drawn");
    QTest::newRow("0 in default") << 0.0f << 360.0f << 0.0f << true;
    QTest::newRow("360 in default") << 0.0f << 360.0f << 360.0f << true;
    QTest::newRow("360.01 out") << 0.0f << 360.0f << 360.01f << false;
    QTest::newRow("unset -1 out") << 0.0f << 360.0f << -1.0f << false;
    QTest::newRow("NaN out") << 0.0f << 360.0f << std::numeric_limits<float>::quiet_NaN() << false;
    QTest::newRow("lower bound in") << 10.0f << 20.0f << 10.0f << true;
    QTest::newRow("upper bound in") << 10.0f << 20.0f << 20.0f << true;
    QTest::newRow("below") << 10.0f << 20.0f << 9.99f << false;
    QTest::newRow("reversed range shows nothing") << 20.0f << 10.0f << 15.0f << false;
}

void DisplayTest::angleRange()
{
    QFETCH(float, minAngle);
    QFETCH(float, maxAngle);
    QFETCH(float, azimuth);
    QFETCH(bool, drawn);
    lidar::LidarDataPoint_V4 frame;
    frame.points[0] = {point(1, 1, azimuth)};
    display::CloudFillOptions options;
    options.minAngle = minAngle;
    options.maxAngle = maxAngle;
    Cloud cloud;
    int rows = 0;
    display::fillCloud(frame, cloud, options, [&](int, const lidar::LidarPoint&) { ++rows; });
    QCOMPARE(cloud.size() == 1, drawn);
    QCOMPARE(rows == 1, drawn);  // a skipped point has no table row either
}

void DisplayTest::rowLimit_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<QList<int>>("rowIds");
    QTest::newRow("limit runs across IDs") << 3 << QList<int>{0, 0, 5};
    QTest::newRow("no limit") << -1 << QList<int>{0, 0, 5, 5, 8};
    QTest::newRow("zero") << 0 << QList<int>{};
    QTest::newRow("above the count") << 30 << QList<int>{0, 0, 5, 5, 8};
}

void DisplayTest::rowLimit()
{
    QFETCH(int, limit);
    QFETCH(QList<int>, rowIds);
    lidar::LidarDataPoint_V4 frame;
    frame.points[5] = {point(1, 0, 30), point(2, 0, 40)};
    frame.points[0] = {point(3, 0, 10), point(4, 0, 500), point(5, 0, 20)};  // 500 is out of range
    frame.points[8] = {point(6, 0, 50)};
    display::CloudFillOptions options;
    options.rowLimit = limit;
    Cloud cloud;
    QList<int> ids;
    QList<float> xs;
    const display::CloudFillResult result = display::fillCloud(
        frame, cloud, options, [&](int id, const lidar::LidarPoint& p) { ids << id; xs << p.x; });
    QCOMPARE(ids, rowIds);
    QCOMPARE(result.rows, rowIds.size());
    if (!xs.isEmpty())
        QCOMPARE(xs.first(), 3.0f);  // increasing ID, then array order, skipped points not counted
    QCOMPARE(int(cloud.size()), 5);
    QCOMPARE(int(cloud.width), 5);
    QCOMPARE(int(cloud.height), 1);
}

void DisplayTest::fillColoursAndDistances()
{
    lidar::LidarDataPoint_V4 frame;
    frame.points[0] = {point(0.5f, 1.5f, 10, 2500, 80), point(-1.0f, 2.0f, 200, 800, 31)};
    Cloud cloud;
    cloud.points.resize(40);  // an old frame's points are replaced, not kept

    display::CloudFillOptions options;
    options.trackDistances = true;
    display::CloudFillResult result = display::fillCloud(frame, cloud, options, nullptr);
    QCOMPARE(int(cloud.size()), 2);
    const pcl::PointXYZRGB& first = cloud.points[0];
    QCOMPARE(first.x, 0.5f);
    QCOMPARE(first.y, 1.5f);
    QCOMPARE(first.data[3], 1.0f);
    QCOMPARE(int(first.a), 255);
    QCOMPARE((QList<int>{first.r, first.g, first.b}), (QList<int>{0, 255, 0}));  // intensity 80
    QCOMPARE((QList<int>{cloud.points[1].r, cloud.points[1].g, cloud.points[1].b}), (QList<int>{0, 248, 255}));
    QCOMPARE(result.minDistance, 800);
    QCOMPARE(result.maxDistance, 2500);

    options.colourMode = display::AzimuthColours;
    display::fillCloud(frame, cloud, options, nullptr);
    QCOMPARE((QList<int>{cloud.points[1].r, cloud.points[1].g, cloud.points[1].b}), (QList<int>{0, 255, 0}));

    options.useFixedColour = true;
    options.fixedColour = {255, 255, 255};
    display::fillCloud(frame, cloud, options, nullptr);
    QCOMPARE((QList<int>{cloud.points[0].r, cloud.points[0].g, cloud.points[0].b}), (QList<int>{255, 255, 255}));

    lidar::LidarDataPoint_V4 empty;
    result = display::fillCloud(empty, cloud, options, nullptr);
    QCOMPARE(int(cloud.size()), 0);
    QCOMPARE(int(cloud.width), 0);
    QCOMPARE(result.rows, 0);
}

void DisplayTest::extentIgnoresNonFinitePoints()
{
    Cloud cloud;
    pcl::PointXYZRGB p;
    p.x = -0.25f, p.y = 1.0f, p.z = 0.0f;
    cloud.points.push_back(p);
    p.x = 0.25f, p.y = 3.0f;
    cloud.points.push_back(p);
    p.x = std::numeric_limits<float>::quiet_NaN(), p.y = 100.0f;
    cloud.points.push_back(p);
    cloud.is_dense = false;
    display::CloudExtent e = display::cloudExtent(cloud);
    QCOMPARE(e.min[0], -0.25f);
    QCOMPARE(e.max[0], 0.25f);
    QCOMPARE(e.max[1], 3.0f);

    e = display::cloudExtent(Cloud());
    QVERIFY(e.min[0] > e.max[0]);
}

void DisplayTest::tableRowTexts_data()
{
    QTest::addColumn<int>("precision");
    QTest::addColumn<QStringList>("cells");
    QTest::newRow("2 decimals") << 2
                                << QStringList{"4", "0.130,   -1.500,   0.25", "45.50", "1.23", "255",
                                               "1700000000123456789"};
    QTest::newRow("0 decimals: x and y keep 3") << 0
                                << QStringList{"4", "0.130,   -1.500,   0", "46", "1", "255", "1700000000123456789"};
    QTest::newRow("5 decimals") << 5
                                << QStringList{"4", "0.130,   -1.500,   0.25000", "45.50000", "1.23400", "255",
                                               "1700000000123456789"};
}

void DisplayTest::tableRowTexts()
{
    QFETCH(int, precision);
    QFETCH(QStringList, cells);
    lidar::LidarPoint p = point(0.13f, -1.5f, 45.5f, 1234, 255);
    p.z = 0.25f;
    p.timestamp = 1700000000123456789LL;
    QCOMPARE(pointtable::rowTexts(4, p, precision), cells);
    QCOMPARE(pointtable::headers().size(), pointtable::kColumnCount);

    p.timestamp = -1;
    QCOMPARE(pointtable::rowTexts(4, p, precision).last(), QStringLiteral("-1"));
}

QTEST_APPLESS_MAIN(DisplayTest)
#include "tst_display.moc"
