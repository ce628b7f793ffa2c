// The nearest return per sector on frames with nearest points planted where
// the answer is known, sector 0 reaching across 0 degrees, and the bearing
// and offsets of a ranging pair in each quadrant with the text they make.

#include "RangingBearing.h"
#include "SectorMinima.h"
#include "SyntheticFrames.h"

#include <QtTest>
#include <cmath>

namespace {

struct Planted {
    double azimuth;
    double metres;
};
using NearestAt = QMap<int, double>;  // sector: the azimuth of its nearest point

}  // namespace

Q_DECLARE_METATYPE(Planted)

class SectorsBearingTest : public QObject {
    Q_OBJECT
private slots:
    void sectorMinima_data();
    void sectorMinima();
    void sectorEdges_data();
    void sectorEdges();
    void bearing_data();
    void bearing();
};

void SectorsBearingTest::sectorMinima_data()
{
    QTest::addColumn<int>("sectors");
    QTest::addColumn<QList<Planted>>("planted");  // into a room of 5 m, one point every half degree
    QTest::addColumn<float>("maxAngle");
    QTest::addColumn<NearestAt>("nearest");  // sectors not listed: the wall's first point
    QTest::addColumn<int>("nearestSector");

    // With 12 sectors, sector 0 runs from 345 to 15 degrees.
    QTest::newRow("12 sectors, across 0: the nearer of 359 and 1 degrees")
        << 12 << QList<Planted>{{359.0, 1.2}, {1.0, 1.5}, {100.0, 2.0}} << 360.0f
        << NearestAt{{0, 359.0}, {3, 100.0}} << 0;
    QTest::newRow("12 sectors: just inside sector 0 at 345 degrees")
        << 12 << QList<Planted>{{345.0, 3.0}, {344.5, 2.0}} << 360.0f << NearestAt{{0, 345.0}, {11, 344.5}}
        << 11;
    QTest::newRow("4 sectors: the front one from 315 to 45 degrees")
        << 4 << QList<Planted>{{44.5, 0.8}, {45.0, 0.7}, {315.0, 0.9}, {200.0, 4.0}} << 360.0f
        << NearestAt{{0, 44.5}, {1, 45.0}, {2, 200.0}} << 1;
    QTest::newRow("36 sectors: one point each")
        << 36 << QList<Planted>{{2.0, 0.5}, {12.0, 0.4}, {355.0, 0.3}} << 360.0f
        << NearestAt{{0, 355.0}, {1, 12.0}} << 0;
    QTest::newRow("fewer than 4 sectors make 4") << 2 << QList<Planted>{{90.0, 1.0}} << 360.0f
                                                 << NearestAt{{1, 90.0}} << 1;
    QTest::newRow("a point outside the angle range is left out")
        << 12 << QList<Planted>{{200.0, 0.2}, {100.0, 1.0}} << 180.0f << NearestAt{{3, 100.0}} << 3;
}

void SectorsBearingTest::sectorMinima()
{
    QFETCH(int, sectors);
    QFETCH(QList<Planted>, planted);
    QFETCH(float, maxAngle);
    QFETCH(NearestAt, nearest);
    QFETCH(int, nearestSector);
    constexpr double kRoom = 5.0;
    lidar::LidarDataPoint_V4 frame = synthetic::sweep(0.5, [&](double azimuth) {
        for (const Planted& p : planted)
            if (p.azimuth == azimuth)
                return -1.0;  // the planted point takes its place
        return kRoom;
    });
    for (const Planted& p : planted)
        frame.points[2].push_back(synthetic::point(p.azimuth, p.metres));
    frame.points[3].push_back(synthetic::point(30.0, 0.0));  // no echo: never the nearest

    const display::SectorMinima minima = display::sectorMinima(frame, sectors, 0.0f, maxAngle);
    const int count = std::max(sectors, display::kFewestSectors);
    QCOMPARE(minima.sectors.size(), count);
    for (int k = 0; k < count; ++k) {
        const display::SectorNearest& s = minima.sectors[k];
        const double width = 360.0 / count;
        QCOMPARE(s.fromAzimuth, std::fmod(k * width - width / 2 + 360.0, 360.0));
        QCOMPARE(s.toAzimuth, k * width + width / 2);
        const bool drawn = s.fromAzimuth <= maxAngle || s.toAzimuth <= maxAngle;
        QCOMPARE(s.found, drawn);
        if (!s.found)
            continue;
        if (nearest.contains(k)) {
            QCOMPARE(s.azimuth, nearest[k]);
            for (const Planted& p : planted)
                if (p.azimuth == nearest[k])
                    QCOMPARE(s.distanceM, std::lround(p.metres * 1000) / 1000.0);
            QCOMPARE(s.id, 2);
        } else {
            QCOMPARE(s.distanceM, kRoom);  // the wall: its first point in the sector
            QCOMPARE(s.id, 0);
        }
        const lidar::LidarPoint& p = frame.points[s.id][size_t(s.pointIndex - (s.id == 2 ? frame.points[0].size() : 0))];
        QCOMPARE(double(p.azimuth), s.azimuth);
        QCOMPARE(p.x, s.x);
    }
    QCOMPARE(minima.nearestSector, nearestSector);
    QCOMPARE(minima.nearest(), &minima.sectors[nearestSector]);
}

void SectorsBearingTest::sectorEdges_data()
{
    QTest::addColumn<double>("azimuth");
    QTest::addColumn<int>("sector");  // of 12
    QTest::newRow("0") << 0.0 << 0;
    QTest::newRow("just below 15") << 14.99 << 0;
    QTest::newRow("15 opens sector 1") << 15.0 << 1;
    QTest::newRow("344.99 closes sector 11") << 344.99 << 11;
    QTest::newRow("345 opens sector 0") << 345.0 << 0;
    QTest::newRow("360 is 0") << 360.0 << 0;
}

void SectorsBearingTest::sectorEdges()
{
    QFETCH(double, azimuth);
    QFETCH(int, sector);
    lidar::LidarDataPoint_V4 frame;
    frame.points[0].push_back(synthetic::point(azimuth, 2.0));
    const display::SectorMinima minima = display::sectorMinima(frame);
    QCOMPARE(minima.nearestSector, sector);
    // An empty frame has no nearest point.
    QCOMPARE(display::sectorMinima(lidar::LidarDataPoint_V4()).nearest(), nullptr);
}

void SectorsBearingTest::bearing_data()
{
    QTest::addColumn<QList<double>>("pair");  // x0, y0, x1, y1 in metres
    QTest::addColumn<double>("bearing");      // NaN: none
    QTest::addColumn<QString>("text");
    const double none = std::nan("");
    QTest::newRow("along +x") << QList<double>{0, 0, 2, 0} << 0.0 << "  Bearing:0.00°  Δx:200.00 CM  Δy:0.00 CM";
    QTest::newRow("first quadrant") << QList<double>{1, 1, 2, 2} << 45.0 << "  Bearing:45.00°  Δx:100.00 CM  Δy:100.00 CM";
    QTest::newRow("along +y") << QList<double>{0.5, 0, 0.5, 3} << 90.0 << "  Bearing:90.00°  Δx:0.00 CM  Δy:300.00 CM";
    QTest::newRow("second quadrant") << QList<double>{0, 0, -1, std::sqrt(3.0)} << 120.0
                                     << "  Bearing:120.00°  Δx:-100.00 CM  Δy:173.21 CM";
    QTest::newRow("along -x") << QList<double>{3, -1, 1, -1} << 180.0 << "  Bearing:180.00°  Δx:-200.00 CM  Δy:0.00 CM";
    QTest::newRow("third quadrant") << QList<double>{2, 2, 1, 1} << 225.0
                                    << "  Bearing:225.00°  Δx:-100.00 CM  Δy:-100.00 CM";
    QTest::newRow("along -y") << QList<double>{0, 0, 0, -0.25} << 270.0 << "  Bearing:270.00°  Δx:0.00 CM  Δy:-25.00 CM";
    QTest::newRow("fourth quadrant") << QList<double>{-1, 1, 0, 0} << 315.0
                                     << "  Bearing:315.00°  Δx:100.00 CM  Δy:-100.00 CM";
    QTest::newRow("a hair below +x reads 0.00") << QList<double>{0, 0, 10, -0.00001} << 359.99994
                                                << "  Bearing:0.00°  Δx:1000.00 CM  Δy:0.00 CM";
    QTest::newRow("one spot twice: no bearing") << QList<double>{1.25, -3, 1.25, -3} << none
                                                << "  Bearing:  Δx:0.00 CM  Δy:0.00 CM";
}

void SectorsBearingTest::bearing()
{
    QFETCH(QList<double>, pair);
    QFETCH(double, bearing);
    QFETCH(QString, text);
    const display::RangingComponents c = display::RangingBearing::components(pair[0], pair[1], pair[2], pair[3]);
    QCOMPARE(c.hasBearing(), !std::isnan(bearing));
    if (c.hasBearing())
        QVERIFY2(std::abs(c.bearingDegrees - bearing) < 1e-4, qPrintable(QString::number(c.bearingDegrees, 'g', 12)));
    QVERIFY(std::abs(c.deltaXCm - (pair[2] - pair[0]) * 100) < 1e-9);
    QVERIFY(std::abs(c.deltaYCm - (pair[3] - pair[1]) * 100) < 1e-9);
    QCOMPARE(display::RangingBearing::text(c), text);
}

QTEST_GUILESS_MAIN(SectorsBearingTest)
#include "tst_sectors_bearing.moc"
