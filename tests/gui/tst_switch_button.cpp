// The motor switch on its own: on from the start, flipped only by a left
// click on an enabled switch, moved silently from code, its knob coming to
// rest one pixel past either end, and the colours it paints in each state.

#include "SwitchButton.h"

#include "LoopbackLidar.h"

#include <QApplication>
#include <QSignalSpy>
#include <QtTest>

using testing::waitFor;

namespace {

constexpr int kWidth = 120;
constexpr int kHeight = 30;

// Where the knob rests: one pixel past each end of its travel.
constexpr double kOnEnd = kWidth - kHeight + 1;
constexpr double kOffEnd = -1;

bool settled(const SwitchButton& button)
{
    return waitFor([&] { return !button.isAnimating(); }, 3000);
}

// A switch on screen at its size, its knob at rest for `on`.
bool prepare(SwitchButton& button, bool on, bool enabled)
{
    button.resize(kWidth, kHeight);
    button.show();
    if (!QTest::qWaitForWindowExposed(&button) || !settled(button))
        return false;
    button.setChecked(on);
    button.setEnabled(enabled);
    return settled(button);
}

// Each colour channel of `over` painted at `opacity` on `background`, give or take rounding.
bool blended(QRgb pixel, const QColor& over, double opacity, QRgb background)
{
    const auto channel = [&](int top, int bottom, int seen) {
        return std::abs(bottom + (top - bottom) * opacity - seen) <= 3;
    };
    return channel(over.red(), qRed(background), qRed(pixel)) && channel(over.green(), qGreen(background), qGreen(pixel))
           && channel(over.blue(), qBlue(background), qBlue(pixel));
}

}  // namespace

class SwitchButtonTest : public QObject {
    Q_OBJECT
private slots:
    void startsOnAndSlidesRight();
    void flips_data();
    void flips();
    void paints_data();
    void paints();
};

void SwitchButtonTest::startsOnAndSlidesRight()
{
    SwitchButton button;
    QSignalSpy toggled(&button, &SwitchButton::toggled);
    QVERIFY(button.isChecked() && button.isAnimating());
    // Unsized it runs its first travel over no width; it finishes it once it has one.
    QVERIFY(settled(button));
    QCOMPARE(button.knobX(), 1.0);
    QVERIFY(prepare(button, true, true));
    QCOMPARE(button.animationInterval(), 3);  // 1000 / (90 px / 0.3): a pixel every 3 ms
    QCOMPARE(button.knobX(), kOnEnd);
    QVERIFY(toggled.isEmpty());
    // Setting the state it already has starts nothing.
    button.setChecked(true);
    QVERIFY(!button.isAnimating());
}

void SwitchButtonTest::flips_data()
{
    QTest::addColumn<bool>("startOn");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("button");  // Qt::NoButton: setChecked(!startOn) instead of a click
    QTest::addColumn<QList<bool>>("emitted");
    QTest::addColumn<bool>("endsOn");
    QTest::newRow("left click turns it off") << true << true << int(Qt::LeftButton) << QList<bool>{false} << false;
    QTest::newRow("left click turns it on") << false << true << int(Qt::LeftButton) << QList<bool>{true} << true;
    QTest::newRow("right click does nothing") << false << true << int(Qt::RightButton) << QList<bool>() << false;
    QTest::newRow("disabled ignores a click") << true << false << int(Qt::LeftButton) << QList<bool>() << true;
    QTest::newRow("from code, off, silently") << true << true << int(Qt::NoButton) << QList<bool>() << false;
    QTest::newRow("from code, on, silently") << false << true << int(Qt::NoButton) << QList<bool>() << true;
}

void SwitchButtonTest::flips()
{
    QFETCH(bool, startOn);
    QFETCH(bool, enabled);
    QFETCH(int, button);
    QFETCH(QList<bool>, emitted);
    QFETCH(bool, endsOn);
    SwitchButton sw;
    QVERIFY(prepare(sw, startOn, enabled));
    QSignalSpy toggled(&sw, &SwitchButton::toggled);
    if (button == Qt::NoButton)
        sw.setChecked(!startOn);
    else
        QTest::mouseClick(&sw, Qt::MouseButton(button), Qt::NoModifier, QPoint(kWidth / 2, kHeight / 2));
    QList<bool> seen;
    for (const QList<QVariant>& arguments : toggled)
        seen << arguments.at(0).toBool();
    QCOMPARE(seen, emitted);
    QCOMPARE(sw.isChecked(), endsOn);
    QVERIFY(settled(sw));
    QCOMPARE(sw.knobX(), endsOn ? kOnEnd : kOffEnd);
}

void SwitchButtonTest::paints_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QColor>("track");
    QTest::addColumn<double>("opacity");
    QTest::addColumn<QColor>("knob");
    const QColor grey(60, 60, 60);
    QTest::newRow("on") << true << true << QColor(Qt::green) << 0.6 << QColor(Qt::white);
    QTest::newRow("off") << false << true << grey << 0.8 << QColor(Qt::white);
    QTest::newRow("disabled on") << true << false << grey << 0.26 << grey;
    QTest::newRow("disabled off") << false << false << grey << 0.26 << grey;
}

void SwitchButtonTest::paints()
{
    QFETCH(bool, on);
    QFETCH(bool, enabled);
    QFETCH(QColor, track);
    QFETCH(double, opacity);
    QFETCH(QColor, knob);
    SwitchButton sw;
    QVERIFY(prepare(sw, on, enabled));
    const QImage image = sw.grab().toImage();
    const QRgb background = image.pixel(0, 0);  // outside the rounded track
    // Track between knob and text; the knob's centre, which it paints opaque.
    const QRgb trackPixel = image.pixel(kWidth / 2, 4);
    QVERIFY2(blended(trackPixel, track, opacity, background), qPrintable(QColor(trackPixel).name()));
    const int knobCentre = int((on ? kOnEnd : kOffEnd) + kHeight / 2);
    QCOMPARE(QColor(image.pixel(knobCentre, kHeight / 2)), knob);
}

QTEST_MAIN(SwitchButtonTest)
#include "tst_switch_button.moc"
