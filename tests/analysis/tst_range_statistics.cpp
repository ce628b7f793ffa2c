// Range statistics per direction on frames of known noise, held against a
// plain computation here (mean, population deviation in two passes, the
// return rate counted frame by frame), also where a float accumulation
// would lose the millimetres of a far target; the CSV that carries them;
// and the histogram of one direction.

#include "RangeStatistics.h"
#include "StatisticsCsv.h"
#include "SyntheticFrames.h"

#include <QBuffer>
#include <QtTest>
#include <cmath>
#include <map>
#include <random>

namespace {

struct Expected {
    qint64 returns = 0, framesWithReturn = 0;
    double mean = 0, std = 0, min = 0, max = 0;
};

// Each bin's ranges in millimetres over all frames, and in how many frames it returned.
struct Samples {
    std::map<int, std::vector<int32_t>> ranges;
    std::map<int, qint64> frames;

    Expected expected(int bin) const
    {
        Expected e;
        const auto it = ranges.find(bin);
        if (it == ranges.end())
            return e;
        const std::vector<int32_t>& r = it->second;
        long double sum = 0;
        for (int32_t v : r)
            sum += v;
        const long double mean = sum / r.size();
        long double squares = 0;
        for (int32_t v : r)
            squares += (v - mean) * (v - mean);
        e.returns = qint64(r.size());
        e.framesWithReturn = frames.at(bin);
        e.mean = double(mean) / 1000.0;
        e.std = std::sqrt(double(squares / r.size())) / 1000.0;
        e.min = *std::min_element(r.begin(), r.end()) / 1000.0;
        e.max = *std::max_element(r.begin(), r.end()) / 1000.0;
        return e;
    }
};

double csvNumber(const QByteArray& field)
{
    return field.isEmpty() ? std::nan("") : field.toDouble();
}

}  // namespace

class RangeStatisticsTest : public QObject {
    Q_OBJECT
private slots:
    void knownNoise_data();
    void knownNoise();
    void histogram_data();
    void histogram();
};

void RangeStatisticsTest::knownNoise_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("channels");
    QTest::addColumn<double>("rangeM");
    QTest::addColumn<double>("sigmaMm");
    QTest::addColumn<double>("returnChance");
    QTest::addColumn<int>("frames");
    QTest::newRow("Wren_Plus: two channels, 1 cm noise") << 0.5 << 2 << 4.0 << 10.0 << 1.0 << 100;
    QTest::newRow("a dirty window: seven returns in ten") << 0.5 << 1 << 4.0 << 10.0 << 0.7 << 100;
    QTest::newRow("Tern's step, 5 cm noise, few returns") << 15.0 / 41.0 << 1 << 2.5 << 50.0 << 0.2 << 50;
    QTest::newRow("one frame") << 0.5 << 1 << 3.0 << 20.0 << 1.0 << 1;
    // Squares of 60 m in millimetres summed in float would lose the noise.
    QTest::newRow("far and steady: 60 m, 1 mm, a thousand frames") << 1.0 << 2 << 60.0 << 1.0 << 0.9 << 1000;
}

void RangeStatisticsTest::knownNoise()
{
    QFETCH(double, step);
    QFETCH(int, channels);
    QFETCH(double, rangeM);
    QFETCH(double, sigmaMm);
    QFETCH(double, returnChance);
    QFETCH(int, frames);

    const display::AngularBins bins(step);
    display::RangeStatistics statistics(bins);
    std::mt19937 random(20);
    std::normal_distribution<double> noise(0.0, sigmaMm);
    std::uniform_real_distribution<double> chance(0.0, 1.0);
    Samples samples;
    for (int f = 0; f < frames; ++f) {
        lidar::LidarDataPoint_V4 frame;
        for (int bin = 0; bin < bins.count(); ++bin) {
            bool returned = false;
            for (int c = 0; c < channels; ++c) {
                if (chance(random) >= returnChance)
                    continue;
                // The walls come nearer towards 180 degrees, so directions differ.
                const double metres = rangeM - bin * step / 360.0 + noise(random) / 1000.0;
                lidar::LidarPoint p = synthetic::point(bin * step, metres);
                frame.points[c].push_back(p);
                samples.ranges[bin].push_back(p.distance);
                returned = true;
            }
            samples.frames[bin] += returned;
        }
        statistics.addFrame(frame);
    }
    QCOMPARE(statistics.frames(), qint64(frames));

    QBuffer csv;
    csv.open(QIODevice::WriteOnly);
    QVERIFY(display::writeStatisticsCsv(statistics, csv));
    const QList<QByteArray> lines = csv.data().split('\n');
    QCOMPARE(lines.size(), bins.count() + 2);  // header, directions, the final line feed
    QCOMPARE(lines.first(), QByteArray("azimuth,frames,returns,return_rate,mean_m,std_m,min_m,max_m"));

    for (int bin = 0; bin < bins.count(); ++bin) {
        const Expected e = samples.expected(bin);
        const display::BinStatistics s = statistics.bin(bin);
        QCOMPARE(s.frames, qint64(frames));
        QCOMPARE(s.returns, e.returns);
        QCOMPARE(s.framesWithReturn, e.framesWithReturn);
        QCOMPARE(s.returnRate, double(e.framesWithReturn) / frames);
        const QList<QByteArray> fields = lines.at(bin + 1).split(',');
        QCOMPARE(fields.size(), 8);
        QCOMPARE(fields[0].toDouble(), std::round(bins.centre(bin) * 1000.0) / 1000.0);
        QCOMPARE(fields[1].toLongLong(), qint64(frames));
        QCOMPARE(fields[2].toLongLong(), e.returns);
        if (e.returns == 0) {
            QVERIFY(std::isnan(s.meanM) && std::isnan(s.stdM) && std::isnan(s.minM) && std::isnan(s.maxM));
            QCOMPARE(fields.mid(4), (QList<QByteArray>{"", "", "", ""}));
            continue;
        }
        QVERIFY2(std::abs(s.meanM - e.mean) < 1e-9, qPrintable(QStringLiteral("bin %1 mean").arg(bin)));
        QVERIFY2(std::abs(s.stdM - e.std) < 1e-9, qPrintable(QStringLiteral("bin %1 deviation").arg(bin)));
        QCOMPARE(s.minM, e.min);
        QCOMPARE(s.maxM, e.max);
        // The CSV to its decimals.
        const double got[] = {csvNumber(fields[3]), csvNumber(fields[4]), csvNumber(fields[5]), csvNumber(fields[6]),
                              csvNumber(fields[7])};
        const double want[] = {double(e.framesWithReturn) / frames, e.mean, e.std, e.min, e.max};
        for (int i = 0; i < 5; ++i)
            QVERIFY2(std::abs(got[i] - want[i]) <= 0.00005 + 1e-12,
                     qPrintable(QStringLiteral("bin %1, column %2: %3").arg(bin).arg(i + 3).arg(got[i])));
    }
}

void RangeStatisticsTest::histogram_data()
{
    QTest::addColumn<QList<int>>("ranges");  // millimetres, in one direction
    QTest::addColumn<int>("buckets");
    QTest::addColumn<bool>("keep");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("width");
    QTest::addColumn<QList<int>>("counts");
    QTest::newRow("four millimetres in two buckets") << QList<int>{5001, 5000, 5003, 5002} << 2 << true << 5.0
                                                     << 0.002 << QList<int>{2, 2};
    QTest::newRow("one range") << QList<int>{3000, 3000} << 20 << true << 3.0 << 0.001 << QList<int>{2};
    QTest::newRow("21 mm in 20 buckets: 2 mm each")
        << QList<int>{4990, 4990, 5000, 5010} << 20 << true << 4.99 << 0.002
        << QList<int>{2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    QTest::newRow("no return") << QList<int>{} << 20 << true << 0.0 << 0.0 << QList<int>{};
    QTest::newRow("ranges not kept") << QList<int>{3000} << 20 << false << 0.0 << 0.0 << QList<int>{};
}

void RangeStatisticsTest::histogram()
{
    QFETCH(QList<int>, ranges);
    QFETCH(int, buckets);
    QFETCH(bool, keep);
    QFETCH(double, from);
    QFETCH(double, width);
    QFETCH(QList<int>, counts);
    display::RangeStatistics statistics(display::AngularBins(0.5), keep);
    for (int mm : ranges) {
        lidar::LidarDataPoint_V4 frame;
        frame.points[0].push_back(synthetic::point(90.0, mm / 1000.0));
        frame.points[0].push_back(synthetic::point(90.5, 7.0));
        statistics.addFrame(frame);
    }
    const display::RangeHistogram h = statistics.histogram(statistics.bins().binOf(90.0), buckets);
    QCOMPARE(h.counts.toList(), counts);
    if (!counts.isEmpty()) {
        QCOMPARE(h.fromM, from);
        QCOMPARE(h.bucketWidthM, width);
    }
    statistics.clear();
    QCOMPARE(statistics.frames(), qint64(0));
    QVERIFY(statistics.histogram(statistics.bins().binOf(90.0)).isEmpty());
    QVERIFY(std::isnan(statistics.bin(0).returnRate));
}

QTEST_GUILESS_MAIN(RangeStatisticsTest)
#include "tst_range_statistics.moc"
