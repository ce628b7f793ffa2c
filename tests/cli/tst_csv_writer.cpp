// The CSV format: number texts, the display's rounding, line layout, angle
// range and write failures.

#include "CsvWriter.h"
#include "NumberText.h"
#include "PointRounding.h"

#include <QBuffer>
#include <QtTest>
#include <cmath>
#include <cstring>
#include <random>

class CsvWriterTest : public QObject {
    Q_OBJECT
private slots:
    void floatText_data();
    void floatText();
    void floatTextIsShortestAndRoundTrips();
    void rounding_data();
    void rounding();
    void pointLines_data();
    void pointLines();
    void framesInIdOrderWithinTheAngleRange();
    void writeFailureIsReported();
};

void CsvWriterTest::floatText_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("float digits, not double ones") << 0.1f << QByteArray("0.1");
    QTest::newRow("rounded coordinate") << float(13 * 0.01) << QByteArray("0.13");
    QTest::newRow("negative") << float(-12 * 0.01) << QByteArray("-0.12");
    QTest::newRow("whole number stays plain") << 300.0f << QByteArray("300");
    QTest::newRow("100000 stays plain") << 100000.0f << QByteArray("100000");
    QTest::newRow("million takes the exponent") << 1e6f << QByteArray("1e+06");
    QTest::newRow("long whole number stays plain") << 1234567.0f << QByteArray("1234567");
    QTest::newRow("small stays plain") << 0.0001f << QByteArray("0.0001");
    QTest::newRow("smaller takes the exponent") << 1.5e-5f << QByteArray("1.5e-05");
    QTest::newRow("azimuth step") << 15.0f / 41.0f << QByteArray("0.36585367");
    QTest::newRow("zero") << 0.0f << QByteArray("0");
    QTest::newRow("negative zero") << -0.0f << QByteArray("0");
    QTest::newRow("not a number") << std::nanf("") << QByteArray("nan");
}

void CsvWriterTest::floatText()
{
    QFETCH(float, value);
    QFETCH(QByteArray, text);
    QCOMPARE(numbertext::shortest(value), text);
}

void CsvWriterTest::floatTextIsShortestAndRoundTrips()
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> coordinates(-70.0f, 400.0f);
    for (int i = 0; i < 200000; ++i) {
        float value;
        if (i % 2) {
            value = coordinates(random);
        } else {
            const uint32_t bits = random();
            std::memcpy(&value, &bits, sizeof value);
            if (!std::isfinite(value))
                continue;
        }
        const QByteArray text = numbertext::shortest(value);
        QCOMPARE(std::strtof(text.constData(), nullptr), value);
        // Its significant digits, without leading and placeholder zeros.
        QByteArray digits;
        for (char c : text.left(text.contains('e') ? text.indexOf('e') : text.size()))
            if (c >= '0' && c <= '9' && !(digits.isEmpty() && c == '0'))
                digits.append(c);
        while (digits.endsWith('0'))
            digits.chop(1);
        // One significant digit fewer never reads back as the same float.
        if (digits.size() > 1) {
            char shorter[64];
            std::snprintf(shorter, sizeof shorter, "%.*g", int(digits.size()) - 1, double(value));
            QVERIFY2(std::strtof(shorter, nullptr) != value, text.constData());
        }
    }
}

void CsvWriterTest::rounding_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<float>("rounded");
    QTest::newRow("half up") << 0.125f << float(13 * 0.01);
    QTest::newRow("negative half goes up too") << -0.125f << float(-12 * 0.01);
    QTest::newRow("below half") << 1.234f << float(123 * 0.01);
    QTest::newRow("above half") << -1.236f << float(-124 * 0.01);
    QTest::newRow("small negative to zero") << -0.004f << 0.0f;
    QTest::newRow("two decimals stay") << 65.53f << float(6553 * 0.01);
    QTest::newRow("whole") << 3.0f << 3.0f;
}

void CsvWriterTest::rounding()
{
    QFETCH(float, value);
    QFETCH(float, rounded);
    QCOMPARE(display::roundCoordinate(value), rounded);

    lidar::LidarDataPoint_V4 frame;
    lidar::LidarPoint p;
    p.x = value;
    p.y = -value;
    p.z = value;
    p.azimuth = 123.456f;
    frame.points[3].push_back(p);
    display::roundFrameCoordinates(frame);
    const lidar::LidarPoint& r = frame.points[3].front();
    QCOMPARE(r.x, rounded);
    QCOMPARE(r.y, display::roundCoordinate(-value));
    QCOMPARE(r.z, rounded);
    QCOMPARE(r.azimuth, 123.456f);  // only the coordinates are rounded
}

void CsvWriterTest::pointLines_data()
{
    QTest::addColumn<int>("frameNumber");
    QTest::addColumn<int>("id");
    QTest::addColumn<float>("x");
    QTest::addColumn<float>("azimuth");
    QTest::addColumn<int>("distance");
    QTest::addColumn<int>("intensity");
    QTest::addColumn<qlonglong>("timestamp");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("no time stamp")
        << 1 << 0 << float(13 * 0.01) << 90.0f << 1234 << 255 << -1LL << QByteArray("1,0,0.13,-2.5,0,90,1.234,255,-1\n");
    QTest::newRow("64-bit time stamp") << 12 << 1 << 0.0f << 0.36585367f << 65535 << 0 << 1716199872345LL
                                       << QByteArray("12,1,0,-2.5,0,0.36585367,65.535,0,1716199872345\n");
    QTest::newRow("whole metres") << 3 << 0 << -1.0f << 359.98f << 1000 << 0 << -1LL
                                  << QByteArray("3,0,-1,-2.5,0,359.98,1,0,-1\n");
}

void CsvWriterTest::pointLines()
{
    QFETCH(int, frameNumber);
    QFETCH(int, id);
    QFETCH(float, x);
    QFETCH(float, azimuth);
    QFETCH(int, distance);
    QFETCH(int, intensity);
    QFETCH(qlonglong, timestamp);
    QFETCH(QByteArray, line);
    lidar::LidarPoint p;
    p.x = x;
    p.y = -2.5f;
    p.z = 0.0f;
    p.azimuth = azimuth;
    p.distance = distance;
    p.intensity = intensity;
    p.timestamp = timestamp;
    QCOMPARE(CsvWriter::pointLine(frameNumber, id, p), line);

    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(&buffer);
        writer.writeHeader();
        writer.writePoint(frameNumber, id, p);
    }  // the destructor flushes
    QCOMPARE(buffer.data(),
             QByteArray("FrameNumbers,ID,Points_X,Points_Y,Points_Z,Azimuth,Distance,Intensity,Timestamp\n") + line);
}

void CsvWriterTest::framesInIdOrderWithinTheAngleRange()
{
    lidar::LidarDataPoint_V4 frame;
    auto add = [&](int id, float azimuth) {
        lidar::LidarPoint p;
        p.azimuth = azimuth;
        p.distance = 1000;
        frame.points[id].push_back(p);
    };
    add(1, 10.0f);
    add(0, 200.0f);
    add(0, 90.0f);  // array order, not azimuth order
    add(0, 89.99f);
    add(1, 180.0f);
    add(1, std::nanf(""));
    add(2, 180.01f);

    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    CsvWriter writer(&buffer);
    writer.setAngleRange(90.0f, 180.0f);
    QCOMPARE(writer.writeFrame(4, frame), qint64(2));
    writer.setAngleRange(0.0f, 360.0f);
    QCOMPARE(writer.writeFrame(5, frame), qint64(6));  // everything but NaN
    writer.setAngleRange(200.0f, 100.0f);
    QCOMPARE(writer.writeFrame(6, frame), qint64(0));
    QVERIFY(writer.flush());

    const QList<QByteArray> lines = buffer.data().split('\n');
    QStringList prefixes;
    for (const QByteArray& line : lines)
        if (!line.isEmpty())
            prefixes << QString::fromLatin1(line.split(',').mid(0, 2).join(',') + "@" + line.split(',').at(5));
    QCOMPARE(prefixes, QStringList({"4,0@90", "4,1@180", "5,0@200", "5,0@90", "5,0@89.99", "5,1@10", "5,1@180",
                                    "5,2@180.01"}));
}

void CsvWriterTest::writeFailureIsReported()
{
    QBuffer readOnly;
    readOnly.open(QIODevice::ReadOnly);
    CsvWriter writer(&readOnly);
    writer.writeHeader();
    QVERIFY(!writer.flush());
    QVERIFY(writer.hasError());
    QVERIFY(!writer.errorString().isEmpty());
}

QTEST_APPLESS_MAIN(CsvWriterTest)
#include "tst_csv_writer.moc"
