// Frames through the main window: rounding, angle range, colour modes, box
// selection, table rows and their limit, empty frames, point size, camera
// views, axes, clearing, and the offline player driving the display.

#include "OffinePlayWidget.h"
#include "tst_scandeck_support.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSpinBox>
#include <QSplitter>
#include <QStandardItemModel>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkCamera.h>
#include <vtkMath.h>
#include <vtkRenderer.h>

#include <cmath>
#include <limits>

using namespace testing;

namespace {

QList<int> rgb(const pcl::PointXYZRGB& p)
{
    return {p.r, p.g, p.b};
}

double pointSizeOf(ScanDeck& w, const std::string& id)
{
    double size = -1;
    w.viewer().getPointCloudRenderingProperties(pcl::visualization::PCL_VISUALIZER_POINT_SIZE, size, id);
    return size;
}

QStringList tableColumn(QStandardItemModel* model, int column)
{
    QStringList cells;
    for (int row = 0; row < model->rowCount(); ++row)
        cells << model->item(row, column)->text();
    return cells;
}

}  // namespace

class ScanDeckDisplayTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void roundingRangeAndTable();
    void colourModes_data();
    void colourModes();
    void pointSizeSpinBoxAndKeys();
    void tableRowLimitAndEmptyFrames();
    void angleSpinBoxes();
    void boxSelection();
    void cameraViews_data();
    void cameraViews();
    void axesAndClear();
    void offlinePlayerDrivesTheDisplay();

private:
    std::unique_ptr<ScratchWorkingDir> m_dir;
    std::unique_ptr<ScanDeck> m_window;
};

void ScanDeckDisplayTest::initTestCase()
{
    m_dir = std::make_unique<ScratchWorkingDir>(QStringLiteral("English"));
}

void ScanDeckDisplayTest::init()
{
    m_window = openWindow();
}

void ScanDeckDisplayTest::cleanup()
{
    m_window.reset();
}

void ScanDeckDisplayTest::cleanupTestCase()
{
    m_dir.reset();
}

void ScanDeckDisplayTest::roundingRangeAndTable()
{
    ScanDeck& w = *m_window;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    w.showFrame(makeFrame({{0, 0.125f, -0.125f, 0.0f, 10},
                           {0, 1.0f, 1.0f, 360.0f, 10},
                           {0, 1.0f, 1.0f, 360.01f, 10},
                           {0, 2.0f, 2.0f, nan, 10},
                           {3, 1.234f, -1.235f, 45.0f, 10}}));

    const ScanDeck::Cloud& cloud = w.frameCloud();
    QCOMPARE(int(cloud.size()), 3);
    QCOMPARE(cloud.points[0].x, 0.13f);
    QCOMPARE(cloud.points[0].y, -0.12f);
    QCOMPARE(cloud.points[2].x, 1.23f);
    QCOMPARE(cloud.points[2].y, -1.23f);
    QCOMPARE(int(w.boxCloud().size()), 0);

    // The stored frame is the whole rounded frame, skipped points included.
    QCOMPARE(int(w.lastFrame().pointCount()), 5);
    QCOMPARE(w.lastFrame().points[0][0].x, 0.13f);
    QCOMPARE(w.lastFrame().points[3][0].y, -1.23f);

    QStandardItemModel* model = w.tableModel();
    QCOMPARE(tableColumn(model, 0), (QStringList{"0", "0", "3"}));
    QCOMPARE(model->item(0, 1)->text(), QStringLiteral("0.130,   -0.120,   0.00"));
    QCOMPARE(model->item(2, 2)->text(), QStringLiteral("45.00"));
}

void ScanDeckDisplayTest::colourModes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QList<QList<int>>>("colours");
    // Points: intensity 80 at 10 degrees, 31 at 100, 128 at 200, 255 at 300.
    QTest::newRow("Intensity, with its wrap-around")
        << 0 << QList<QList<int>>{{0, 255, 0}, {0, 248, 255}, {255, 254, 0}, {255, 0, 0}};
    QTest::newRow("Azimuth") << 1 << QList<QList<int>>{{0, 255, 255}, {0, 125, 192}, {0, 255, 0}, {255, 255, 0}};
    QTest::newRow("Solid") << 2 << QList<QList<int>>{{255, 255, 255}, {255, 255, 255}, {255, 255, 255}, {255, 255, 255}};
}

void ScanDeckDisplayTest::colourModes()
{
    QFETCH(int, mode);
    QFETCH(QList<QList<int>>, colours);
    ScanDeck& w = *m_window;
    control<QComboBox>(&w, "comboBox_color_mode")->setCurrentIndex(mode);
    w.showFrame(makeFrame({{0, 1, 0, 10, 80}, {0, 1, 0, 100, 31}, {1, 1, 0, 200, 128}, {1, 1, 0, 300, 255}}));
    QList<QList<int>> drawn;
    for (const pcl::PointXYZRGB& p : w.frameCloud().points) {
        drawn << rgb(p);
        QCOMPARE(int(p.a), 255);
    }
    QCOMPARE(drawn, colours);
}

void ScanDeckDisplayTest::pointSizeSpinBoxAndKeys()
{
    ScanDeck& w = *m_window;
    auto* spin = control<QSpinBox>(&w, "spinBox_point_size");
    const lidar::LidarDataPoint_V4 frame = ringFrame(10);
    w.showFrame(frame);
    QCOMPARE(spin->value(), 3);
    QCOMPARE(pointSizeOf(w, "m_pointCloud"), 4.0);
    QCOMPARE(pointSizeOf(w, "m_boxPointCloud"), 6.0);

    // "+" and "-" in the view change the size but not the spin box.
    QWidget* view = control(&w, "openGLWidget");
    QTest::keyClick(view, '+');
    QCOMPARE(w.pointSize(), 5);
    for (int i = 0; i < 8; ++i)
        QTest::keyClick(view, '+');
    QCOMPARE(w.pointSize(), 10);
    for (int i = 0; i < 12; ++i)
        QTest::keyClick(view, '-');
    QCOMPARE(w.pointSize(), 1);
    QCOMPARE(spin->value(), 3);

    spin->setValue(7);
    QCOMPARE(w.pointSize(), 7);
    QCOMPARE(pointSizeOf(w, "m_pointCloud"), 1.0);  // takes effect with the next frame
    w.showFrame(frame);
    QCOMPARE(pointSizeOf(w, "m_pointCloud"), 7.0);
    QCOMPARE(pointSizeOf(w, "m_boxPointCloud"), 9.0);
}

void ScanDeckDisplayTest::tableRowLimitAndEmptyFrames()
{
    ScanDeck& w = *m_window;
    QStandardItemModel* model = w.tableModel();
    const lidar::LidarDataPoint_V4 frame = ringFrame(50);
    w.showFrame(frame);
    QCOMPARE(model->rowCount(), 30);

    auto* allData = control<QCheckBox>(&w, "checkBox_all_data");
    auto* rows = control<QSpinBox>(&w, "spinBox_rows");
    allData->setChecked(true);
    QVERIFY(!rows->isEnabled());
    w.showFrame(frame);
    QCOMPARE(model->rowCount(), 50);
    allData->setChecked(false);
    rows->setValue(5);
    control<QSpinBox>(&w, "spinBox_precision")->setValue(0);
    w.showFrame(frame);
    QCOMPARE(model->rowCount(), 5);
    QCOMPARE(tableColumn(model, 2), (QStringList{"0", "7", "14", "22", "29"}));  // 7.2 degrees apart

    // An empty frame empties both clouds in the view and leaves the table.
    w.showFrame(lidar::LidarDataPoint_V4());
    QCOMPARE(int(w.frameCloud().size()), 0);
    QCOMPARE(model->rowCount(), 5);
    const auto clouds = w.viewer().getCloudActorMap();
    QVERIFY(clouds->find("m_pointCloud") != clouds->end());
    QVERIFY(clouds->find("m_boxPointCloud") != clouds->end());
    QVERIFY(w.lastFrame().points.isEmpty());
}

void ScanDeckDisplayTest::angleSpinBoxes()
{
    ScanDeck& w = *m_window;
    auto* minimum = control<QDoubleSpinBox>(&w, "spinbox_min_angle");
    auto* maximum = control<QDoubleSpinBox>(&w, "spinbox_max_angle");
    QCOMPARE(minimum->maximum(), 360.0);
    QCOMPARE(maximum->value(), 360.0);
    minimum->setValue(90);
    maximum->setValue(180);
    QCOMPARE(w.minAngle(), 90.0f);
    QCOMPARE(w.maxAngle(), 180.0f);
    w.showFrame(ringFrame(360));
    QCOMPARE(int(w.frameCloud().size()), 91);  // 90 to 180 inclusive

    minimum->setValue(200);
    w.showFrame(ringFrame(360));
    QCOMPARE(int(w.frameCloud().size()), 0);
}

void ScanDeckDisplayTest::boxSelection()
{
    ScanDeck& w = *m_window;
    QStandardItemModel* model = w.tableModel();
    w.showFrame(makeFrame({{0, 0.0f, 1.0f, 0, 10}, {0, 0.5f, 1.5f, 18, 10}, {0, 3.0f, 3.0f, 45, 10},
                           {1, 0.25f, 1.2f, 11, 10}}));
    QVERIFY(!w.isBoxActive());

    // The rubber band caught the first two drawn points: their bounding box
    // becomes the selection box.
    w.areaPicked({0, 1, 99});
    QVERIFY(w.isBoxActive());
    QVERIFY(control(&w, "btn_resize_range")->isEnabled());
    const BoxRange box = w.getBoxRange();
    QCOMPARE(box.min.x, 0.0f);
    QCOMPARE(box.min.y, 1.0f);
    QCOMPARE(box.max.x, 0.5f);
    QCOMPARE(box.max.y, 1.5f);

    // Next frame: the points inside are drawn white and are the table.
    w.showFrame(makeFrame({{0, 0.004f, 1.0f, 0, 10}, {0, 3.0f, 3.0f, 45, 10}, {2, 0.5f, 1.5f, 18, 10},
                           {2, 0.506f, 1.2f, 22, 10}}));
    QCOMPARE(int(w.frameCloud().size()), 4);
    QCOMPARE(int(w.boxCloud().size()), 2);
    for (const pcl::PointXYZRGB& p : w.boxCloud().points)
        QCOMPARE(rgb(p), (QList<int>{255, 255, 255}));
    QCOMPARE(tableColumn(model, 0), (QStringList{"0", "2"}));
    QCOMPARE(pointSizeOf(w, "m_boxPointCloud"), double(w.pointSize() + 2));

    // Nothing inside: the box cloud is empty and the table keeps the frame's rows.
    w.showFrame(makeFrame({{0, 3.0f, 3.0f, 45, 10}, {1, 4.0f, 4.0f, 45, 10}}));
    QCOMPARE(int(w.boxCloud().size()), 0);
    QCOMPARE(tableColumn(model, 0), (QStringList{"0", "1"}));

    // A box set through the interface is used from the next frame on.
    w.setBoxRange({2.9f, 2.9f, 0.0f, 1.0f}, {3.1f, 3.1f, 0.0f, 1.0f});
    w.showFrame(makeFrame({{0, 3.0f, 3.0f, 45, 10}, {1, 4.0f, 4.0f, 45, 10}}));
    QCOMPARE(int(w.boxCloud().size()), 1);
    QCOMPARE(model->rowCount(), 1);
}

void ScanDeckDisplayTest::cameraViews_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QList<double>>("direction");
    QTest::addColumn<QList<double>>("viewUp");
    const double s = 1 / std::sqrt(5.0);
    QTest::newRow("top") << "btn_top_view" << QList<double>{0, 0, 1} << QList<double>{0, 1, 0};
    QTest::newRow("left") << "btn_left_view" << QList<double>{-2 * s, 0, s} << QList<double>{0, 0, 1};
    QTest::newRow("right") << "btn_right_view" << QList<double>{2 * s, 0, s} << QList<double>{0, 0, 1};
    QTest::newRow("front") << "btn_front_view" << QList<double>{0, -2 * s, s} << QList<double>{0, 0, 1};
}

void ScanDeckDisplayTest::cameraViews()
{
    QFETCH(QString, button);
    QFETCH(QList<double>, direction);
    QFETCH(QList<double>, viewUp);
    ScanDeck& w = *m_window;
    w.showFrame(ringFrame(100));
    control<QAbstractButton>(&w, qPrintable(button))->click();

    vtkCamera* camera = w.renderer()->GetActiveCamera();
    double position[3], focal[3], up[3];
    camera->GetPosition(position);
    camera->GetFocalPoint(focal);
    camera->GetViewUp(up);
    double toCamera[3] = {position[0] - focal[0], position[1] - focal[1], position[2] - focal[2]};
    vtkMath::Normalize(toCamera);
    for (int i = 0; i < 3; ++i) {
        QVERIFY2(std::abs(toCamera[i] - direction[i]) < 1e-6, qPrintable(QString::number(toCamera[i])));
        QVERIFY(std::abs(up[i] - viewUp[i]) < 1e-6);
    }
    // The four view buttons are one exclusive group.
    int checked = 0;
    for (const char* name : {"btn_top_view", "btn_left_view", "btn_right_view", "btn_front_view"})
        checked += control<QAbstractButton>(&w, name)->isChecked() ? 1 : 0;
    QCOMPARE(checked, 1);
}

void ScanDeckDisplayTest::axesAndClear()
{
    ScanDeck& w = *m_window;
    auto* axis = control<QAbstractButton>(&w, "btn_axis");
    auto axes = [&] { return w.viewer().contains("coordinate"); };
    axis->click();
    QVERIFY(axes());
    axis->click();
    QVERIFY(!axes());

    axis->click();
    w.showFrame(ringFrame(40));
    w.areaPicked({0, 1, 2});
    QVERIFY(w.tableModel()->rowCount() > 0);
    control<QAbstractButton>(&w, "btn_clear")->click();
    QVERIFY(!axis->isChecked());
    QVERIFY(!axes());
    QCOMPARE(w.tableModel()->rowCount(), 0);
    QVERIFY(w.viewer().getCloudActorMap()->empty());
    QVERIFY(!w.isBoxActive());
    QVERIFY(!control(&w, "btn_resize_range")->isEnabled());
}

void ScanDeckDisplayTest::offlinePlayerDrivesTheDisplay()
{
    ScanDeck& w = *m_window;
    auto* player = control<OffinePlayWidget>(&w, "offline");
    // Frames reach the display before the player's call returns.
    player->loadFrames(QStringLiteral("Tern"), {ringFrame(12), ringFrame(24)});
    QCOMPARE(w.windowTitle(), QStringLiteral("Tern"));
    QCOMPARE(int(w.frameCloud().size()), 12);
    player->nextFrame();  // position 1: the first frame again
    player->nextFrame();
    QCOMPARE(int(w.frameCloud().size()), 24);

    // The player's "Data Show" opens the table pane through the window's button.
    auto* table = control<QAbstractButton>(&w, "btn_table");
    emit player->SendShowTableWidgetSignal(true);
    QVERIFY(table->isChecked());
    QVERIFY(control<QSplitter>(&w, "splitter")->sizes().value(0) > 0);
    emit player->SendShowTableWidgetSignal(true);  // already open: nothing changes
    QVERIFY(table->isChecked());
    emit player->SendShowTableWidgetSignal(false);
    QVERIFY(!table->isChecked());
    QCOMPARE(control<QSplitter>(&w, "splitter")->sizes().value(0), 0);

    player->stop();  // stopping sends an empty frame: the view empties
    QCOMPARE(int(w.frameCloud().size()), 0);
}

SCANDECK_TEST_MAIN(ScanDeckDisplayTest)
#include "tst_scandeck_display.moc"
