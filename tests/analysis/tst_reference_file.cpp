// Reference files: what is saved comes back the same, direction by
// direction; a reference of another model or angular step is refused with
// a message that says which; a file that is no reference, or a damaged one,
// is refused with where and why.

#include "ReferenceFile.h"
#include "SyntheticFrames.h"

#include <QTemporaryDir>
#include <QtTest>
#include <cmath>

class ReferenceFileTest : public QObject {
    Q_OBJECT
private slots:
    void roundTrip_data();
    void roundTrip();
    void otherLidarsAreRefused_data();
    void otherLidarsAreRefused();
    void damagedFilesAreRefused_data();
    void damagedFilesAreRefused();

private:
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(dir_.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }
    QTemporaryDir dir_;
};

void ReferenceFileTest::roundTrip_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<double>("step");
    QTest::newRow("Wren_Plus, half a degree") << "Wren_Plus" << 0.5;
    QTest::newRow("Tern, 15 degrees over 41 points") << "Tern" << 15.0 / 41.0;
    QTest::newRow("Tern_P, 15 degrees over 42 words") << "Tern_P" << 15.0 / 42.0;
}

void ReferenceFileTest::roundTrip()
{
    QFETCH(QString, model);
    QFETCH(double, step);
    // A median over frames can end in half a millimetre; a door stands open
    // from 80 to 100 degrees (nothing returned there).
    display::ReferenceCollector collector(model, step, 2);
    collector.addFrame(synthetic::sweep(step, [](double a) { return a >= 80 && a <= 100 ? 0.0 : 2.0 + a / 100.0; }));
    collector.addFrame(synthetic::sweep(step, [](double a) { return a >= 80 && a <= 100 ? 0.0 : 2.001 + a / 100.0; }));
    const display::ReferenceSweep saved = collector.reference();
    QVERIFY(saved.directionsWithRange() < saved.bins().count());

    const QString path = dir_.filePath(model + ".csv");
    QString error;
    QVERIFY2(display::ReferenceFile::save(saved, path, error), qPrintable(error));
    QVERIFY(!QFile::exists(path + ".part"));
    const display::ReferenceSweep loaded = display::ReferenceFile::loadFor(path, model, step, error);
    QVERIFY2(loaded.isValid(), qPrintable(error));
    QCOMPARE(loaded.model(), model);
    QCOMPARE(loaded.bins().count(), saved.bins().count());
    QVERIFY(std::abs(loaded.angularStep() - step) < 1e-11);
    for (int bin = 0; bin < saved.bins().count(); ++bin) {
        QCOMPARE(loaded.hasRange(bin), saved.hasRange(bin));
        if (saved.hasRange(bin))
            QCOMPARE(loaded.rangeMm(bin), saved.rangeMm(bin));
    }
    // Saved again, the same bytes.
    QCOMPARE(display::ReferenceFile::text(loaded), display::ReferenceFile::text(saved));
}

void ReferenceFileTest::otherLidarsAreRefused_data()
{
    QTest::addColumn<QString>("savedModel");
    QTest::addColumn<double>("savedStep");
    QTest::addColumn<QString>("model");
    QTest::addColumn<double>("step");
    QTest::addColumn<QString>("refusal");  // empty: accepted
    QTest::newRow("the same lidar") << "Wren_Plus" << 0.5 << "Wren_Plus" << 0.5 << "";
    // The step a Wren packet gives varies with its angles' hundredths.
    QTest::newRow("a step a few tenths of a per cent off") << "Wren_Plus" << 0.5 << "Wren_Plus" << 0.502 << "";
    QTest::newRow("another model")
        << "Tern" << 15.0 / 41.0 << "Wren_Plus" << 15.0 / 41.0
        << "This reference was taken with a Tern, not with a Wren_Plus: a reference only fits the model it was taken "
           "with.";
    QTest::newRow("another motor speed")
        << "Wren_Plus" << 0.5 << "Wren_Plus" << 0.75
        << "This reference was taken at an angular step of 0.5000°, but the lidar measures every 0.7500°: its "
           "directions do not match.";
    QTest::newRow("another packet layout")
        << "Tern_P" << 15.0 / 41.0 << "Tern_P" << 15.0 / 42.0 << "taken at an angular step of 0.3659°";
}

void ReferenceFileTest::otherLidarsAreRefused()
{
    QFETCH(QString, savedModel);
    QFETCH(double, savedStep);
    QFETCH(QString, model);
    QFETCH(double, step);
    QFETCH(QString, refusal);
    const QString path = dir_.filePath("reference.csv");
    QString error;
    QVERIFY(display::ReferenceFile::save(display::ReferenceSweep(savedModel, savedStep), path, error));
    const display::ReferenceSweep loaded = display::ReferenceFile::loadFor(path, model, step, error);
    QCOMPARE(loaded.isValid(), refusal.isEmpty());
    if (!refusal.isEmpty())
        QVERIFY2(error.contains(refusal), qPrintable(error));
}

void ReferenceFileTest::damagedFilesAreRefused_data()
{
    QTest::addColumn<QByteArray>("content");  // null: no file at all
    QTest::addColumn<QString>("message");     // empty: a valid reference
    const QByteArray head = "# ScanDeck reference,model=Wren_Kite,angular_step=0.5\nazimuth,range_m\n";
    QTest::newRow("no file") << QByteArray() << "Cannot read";
    QTest::newRow("an empty file") << QByteArray("") << "is not a reference file: its first line does not begin";
    QTest::newRow("a point CSV") << QByteArray("FrameNumbers,ID,Points_X\n1,0,0.5\n") << "is not a reference file";
    QTest::newRow("no model") << QByteArray("# ScanDeck reference,angular_step=0.5\nazimuth,range_m\n")
                              << "its first line names no model";
    QTest::newRow("no step") << QByteArray("# ScanDeck reference,model=Tern\nazimuth,range_m\n")
                             << "its first line gives no angular step";
    QTest::newRow("a step of zero") << QByteArray("# ScanDeck reference,model=Tern,angular_step=0\nazimuth,range_m\n")
                                    << "its first line gives no angular step";
    QTest::newRow("no column names") << QByteArray("# ScanDeck reference,model=Tern,angular_step=0.5\n0.000,3.0\n")
                                     << "is damaged at line 2";
    QTest::newRow("three fields") << head + "0.000,3.0,7\n" << "is damaged at line 3: a line holds an azimuth and a range";
    QTest::newRow("an azimuth that is no number") << head + "0.000,3.0\nnorth,3.0\n" << "is damaged at line 4: \"north\"";
    QTest::newRow("an azimuth of 360") << head + "360,3.0\n" << "is no azimuth from 0 up to 360 degrees";
    QTest::newRow("between two directions") << head + "0.250,3.0\n" << "azimuth 0.250 is not one of the directions";
    QTest::newRow("a direction twice") << head + "1.0,3.0\n1.000,3.1\n" << "is damaged at line 4: azimuth 1.000 is given twice";
    QTest::newRow("a range that is no number") << head + "1.0,far\n" << "\"far\" is no range in metres";
    QTest::newRow("a negative range") << head + "1.0,-2\n" << "\"-2\" is no range in metres";
    QTest::newRow("edited by hand: CRLF, directions left out, blank lines")
        << QByteArray("# ScanDeck reference, model=Wren_Kite, angular_step=0.5\r\nazimuth,range_m\r\n\r\n359.5,2.5\r\n")
        << "";
}

void ReferenceFileTest::damagedFilesAreRefused()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QString path = content.isNull() ? dir_.filePath("missing.csv") : write("damaged.csv", content);
    QString error;
    const display::ReferenceSweep loaded = display::ReferenceFile::load(path, error);
    QCOMPARE(loaded.isValid(), message.isEmpty());
    if (!message.isEmpty()) {
        QVERIFY2(error.contains(message), qPrintable(error));
        QVERIFY2(error.contains(path), qPrintable(error));
        return;
    }
    QCOMPARE(loaded.model(), QStringLiteral("Wren_Kite"));
    QCOMPARE(loaded.directionsWithRange(), 1);
    QCOMPARE(loaded.rangeMm(719), 2500.0);
}

QTEST_GUILESS_MAIN(ReferenceFileTest)
#include "tst_reference_file.moc"
