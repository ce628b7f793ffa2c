// The measurement tools in the main window: grid and polar overlays with
// their dialog, clicks that pick points and measure between them (at the
// screen positions where the points are drawn), box selection by drag and
// by numbers, and the status readouts.

#include "BoxSelectionDialog.h"
#include "FacingLabels.h"
#include "GridPolarDialog.h"
#include "OverlayPainter.h"
#include "ReadoutTexts.h"
#include "tst_scandeck_support.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QTimer>

#include <vtkAbstractPicker.h>
#include <vtkActor.h>
#include <vtkActorCollection.h>
#include <vtkCamera.h>
#include <vtkFollower.h>
#include <vtkMatrix4x4.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkTextActor.h>
#include <vtkVectorText.h>

#include <QVTKOpenGLNativeWidget.h>

using namespace testing;

namespace {

QWidget* view(ScanDeck* w)
{
    return control(w, "openGLWidget");
}

// Where VTK itself draws a world point, in the view's widget coordinates.
QPoint drawnAt(ScanDeck* w, double x, double y, double z = 0.0)
{
    vtkRenderer* renderer = w->renderer();
    renderer->SetWorldPoint(x, y, z, 1.0);
    renderer->WorldToDisplay();
    double display[3];
    renderer->GetDisplayPoint(display);
    const double ratio = view(w)->devicePixelRatioF();
    const int height = renderer->GetRenderWindow()->GetSize()[1];
    return QPoint(qRound(display[0] / ratio), qRound((height - 1 - display[1]) / ratio));
}

void mouse(ScanDeck* w, QEvent::Type type, const QPoint& at, Qt::MouseButtons buttons = Qt::NoButton)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, view(w)->mapToGlobal(at), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(view(w), &event);
}

void clickAt(ScanDeck* w, const QPoint& at)
{
    mouse(w, QEvent::MouseButtonPress, at, Qt::LeftButton);
    mouse(w, QEvent::MouseButtonRelease, at);
}

vtkProp* shape(ScanDeck* w, const QString& id)
{
    auto shapes = w->viewer().getShapeActorMap();
    auto found = shapes->find(id.toStdString());
    return found == shapes->end() ? nullptr : found->second.GetPointer();
}

// An overlay label as the view draws it under its id.
const FacingLabels::Label* overlayLabel(ScanDeck* w, const QString& id)
{
    auto* labels = FacingLabels::SafeDownCast(shape(w, id));
    return labels ? labels->find(id.toStdString()) : nullptr;
}

// The text of a 3D label, or a null string when there is none.
QString label3D(ScanDeck* w, const QString& id)
{
    if (const FacingLabels::Label* label = overlayLabel(w, id))
        return QString::fromStdString(label->text);
    auto* follower = vtkFollower::SafeDownCast(shape(w, id));
    if (!follower)
        return QString();
    return QString::fromUtf8(vtkVectorText::SafeDownCast(follower->GetMapper()->GetInputAlgorithm())->GetText());
}

vtkPolyData* geometryOf(vtkProp* prop)
{
    return vtkPolyData::SafeDownCast(vtkActor::SafeDownCast(prop)->GetMapper()->GetInput());
}

// The two ends of a line cell, as x, y, z of the first and then the second.
QList<double> endsOf(vtkPolyData* geometry, vtkIdType cell)
{
    double from[3], to[3];
    vtkIdType count = 0;
    const vtkIdType* ends = nullptr;
    geometry->GetLines()->GetCellAtId(cell, count, ends);
    geometry->GetPoint(ends[0], from);
    geometry->GetPoint(ends[1], to);
    return {from[0], from[1], from[2], to[0], to[1], to[2]};
}

bool near(const QList<double>& actual, const QList<double>& expected)
{
    if (actual.size() != expected.size())
        return false;
    for (int i = 0; i < actual.size(); ++i)
        if (std::abs(actual[i] - expected[i]) > 1e-6)
            return false;
    return true;
}

QString text2D(ScanDeck* w, const QString& id)
{
    auto* text = vtkTextActor::SafeDownCast(shape(w, id));
    return text ? QString::fromUtf8(text->GetInput()) : QString();
}

QString labelText(ScanDeck* w, const char* name)
{
    return control<QLabel>(w, name)->text();
}

// Runs `act` on the modal dialog that `open` shows, then closes it if `act`
// did not: nothing waits for a person.
template <typename Dialog>
Dialog* onModal(const std::function<void()>& open, const std::function<void(Dialog*)>& act)
{
    Dialog* seen = nullptr;
    QTimer::singleShot(0, [&] {
        seen = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        if (seen)
            act(seen);
        if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            modal->reject();
    });
    open();
    return seen;
}

// Four points 1 m apart on the axes and one at (1, 1), 10 cm apart from
// its neighbour; ambient value and date-time as a GPS model gives them.
Frame crossFrame()
{
    Frame frame = makeFrame({{0, 1.0f, 0.0f, 90, 10}, {0, 0.0f, 1.0f, 0, 10}, {1, -1.0f, 0.0f, 270, 10},
                             {1, 0.0f, -1.0f, 180, 10}, {1, 1.0f, 1.0f, 45, 10}, {1, 1.1f, 1.0f, 48, 10}});
    frame.motorSpeed = 600;
    return frame;
}

}  // namespace

class MeasureTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { m_dir = std::make_unique<ScratchWorkingDir>(QStringLiteral("English")); }
    void cleanupTestCase() { m_dir.reset(); }

    void overlays_data();
    void overlays();
    void overlayDialog();
    void labelsFaceTheCamera_data();
    void labelsFaceTheCamera();
    void labelsAreDrawn();
    void picking();
    void rangingPairs_data();
    void rangingPairs();
    void boxByDragAndByNumbers();
    void cursorAzimuth_data();
    void cursorAzimuth();
    void frameReadouts_data();
    void frameReadouts();
    void hoverReadouts();

private:
    std::unique_ptr<ScratchWorkingDir> m_dir;
};

void MeasureTest::overlays_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<QString>("outerLine");
    QTest::addColumn<QStringList>("gridLabels");  // first two and last
    QTest::addColumn<QString>("outerPolarLabel");
    QTest::newRow("default 100 cm") << 100 << "GridLineY-20.000000" << QStringList{"100CM", "-100CM", "-1900CM"}
                                    << "-2000CM";
    QTest::newRow("1 cm") << 1 << "GridLineY-0.200000" << QStringList{"1CM", "-1CM", "-19CM"} << "-20CM";
    QTest::newRow("dialog's largest, 200 cm") << 200 << "GridLineY-40.000000"
                                              << QStringList{"200CM", "-200CM", "-3800CM"} << "-4000CM";
}

// 41 lines each way, labels one step short of the edge on the y axis; 21
// rings (the first of radius 0) labelled out to the edge on the x axis.
void MeasureTest::overlays()
{
    QFETCH(int, step);
    QFETCH(QString, outerLine);
    QFETCH(QStringList, gridLabels);
    QFETCH(QString, outerPolarLabel);
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->gridStep = w->polarStep = step;
    const int propsBefore = w->renderer()->GetViewProps()->GetNumberOfItems();
    click(w, "btn_grid");
    click(w, "btn_polar");

    QCOMPARE(w->gridLineIds.size(), 82);
    QCOMPARE(w->gridLineIds.first(), outerLine);
    QCOMPARE(w->gridLineIds.mid(40, 2), (QStringList{"GridLineY0.000000", "GridLineX0.000000"}));
    QCOMPARE(w->gridLabelIds.size(), 38);
    QCOMPARE(w->gridLabelIds.first(), "right_grid" + QString::number(step));
    QStringList texts;
    for (const QString& id : w->gridLabelIds)
        texts << label3D(w, id);
    QCOMPARE((QStringList{texts[0], texts[1], texts.last()}), gridLabels);
    const FacingLabels::Label* first = overlayLabel(w, w->gridLabelIds.first());
    QCOMPARE(first->scale, step * 0.001);
    QCOMPARE(float(first->position[1]), float(step * 0.01));

    // The lines in the order of their ids: the outermost along y, the
    // centre line along x.
    const double reach = 20 * step * 0.01;
    vtkPolyData* lines = geometryOf(shape(w, w->gridLineIds.first()));
    QCOMPARE(int(lines->GetNumberOfLines()), 82);
    QVERIFY(near(endsOf(lines, 0), {-reach, -reach, 0, -reach, reach, 0}));
    QVERIFY(near(endsOf(lines, 41), {-reach, 0, 0, reach, 0, 0}));

    // 21 rings (polygon and outline each), the outermost reaching the edge.
    QCOMPARE(int(w->overlays().polarRings().size()), 1);
    vtkPolyData* rings = geometryOf(w->overlays().polarRings().front());
    QCOMPARE(int(rings->GetNumberOfLines()), 21);
    QCOMPARE(int(rings->GetNumberOfPolys()), 21);
    // A 50-gon has a corner on the y axis, not on the x axis.
    QVERIFY(std::abs(rings->GetBounds()[3] - reach) < 1e-6);
    QCOMPARE(w->polarLabelIds.size(), 40);
    QCOMPARE(label3D(w, w->polarLabelIds.last()), outerPolarLabel);
    QCOMPARE(float(overlayLabel(w, w->polarLabelIds.first())->position[0]), float(step * 0.01));
    for (const QString& id : w->gridLineIds + w->gridLabelIds + w->polarLabelIds)
        QVERIFY2(shape(w, id), qPrintable(id));

    // Off removes every id and every actor; on again brings back the same ids.
    const QStringList before = w->gridLineIds + w->gridLabelIds + w->polarLabelIds;
    click(w, "btn_grid");
    click(w, "btn_polar");
    QVERIFY(w->gridLineIds.isEmpty() && w->gridLabelIds.isEmpty() && w->polarLabelIds.isEmpty());
    for (const QString& id : before)
        QVERIFY2(!shape(w, id), qPrintable(id));
    QVERIFY(w->overlays().polarRings().empty());
    QCOMPARE(w->renderer()->GetViewProps()->GetNumberOfItems(), propsBefore);
    click(w, "btn_grid");
    click(w, "btn_polar");
    QCOMPARE(w->gridLineIds + w->gridLabelIds + w->polarLabelIds, before);
}

void MeasureTest::overlayDialog()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    // Off, a new colour and step draw nothing and wait for the next switch-on.
    auto* dialog = onModal<GridPolarDialog>([&] { click(w, "btn_set_grid_polar"); }, [](GridPolarDialog* d) {
        d->findChild<QSpinBox*>("spinBox_r")->setValue(255);
        d->findChild<QSlider*>("horizontalSlider_b")->setValue(0);
        d->findChild<QSpinBox*>("spinBox_all")->setValue(50);
    });
    QVERIFY(dialog && dialog == w->gridPolarDialog());
    QVERIFY(w->gridLineIds.isEmpty() && w->overlays().polarRings().empty());
    QCOMPARE(w->overlayColour, QColor(255, 204, 0));
    QCOMPARE(w->gridStep, 50);
    QCOMPARE(w->polarStep, 50);
    click(w, "btn_grid");
    QCOMPARE(w->gridLineIds.first(), QStringLiteral("GridLineY-10.000000"));

    // On, every change redraws at once: everything takes the new colour.
    click(w, "btn_polar");
    QCOMPARE(onModal<GridPolarDialog>([&] { click(w, "btn_set_grid_polar"); },
                                      [](GridPolarDialog* d) {
                                          QCOMPARE(d->findChild<QSlider*>("horizontalSlider_r")->value(), 255);
                                          d->findChild<QSlider*>("horizontalSlider_g")->setValue(0);
                                      }),
             dialog);
    // Grid lines, grid labels, rings, polar labels: one actor each.
    QSet<vtkActor*> drawn;
    for (const QString& id : w->gridLineIds + w->gridLabelIds + w->polarLabelIds)
        drawn << vtkActor::SafeDownCast(shape(w, id));
    drawn << w->overlays().polarRings().front().GetPointer();
    drawn.remove(nullptr);
    QCOMPARE(drawn.size(), 4);
    for (vtkActor* actor : drawn) {
        const double* colour = actor->GetProperty()->GetColor();
        QCOMPARE((QList<double>{colour[0], colour[1], colour[2]}), (QList<double>{1.0, 0.0, 0.0}));
    }
    QCOMPARE(vtkActor::SafeDownCast(shape(w, w->gridLineIds.first()))->GetProperty()->GetOpacity(), 0.5);
    QCOMPARE(w->overlays().polarRings().front()->GetProperty()->GetOpacity(), 0.25);
    QCOMPARE(vtkActor::SafeDownCast(shape(w, w->gridLabelIds.first()))->GetProperty()->GetOpacity(), 1.0);
}

void MeasureTest::labelsFaceTheCamera_data()
{
    QTest::addColumn<QVector<double>>("camera");  // position, focal point, view-up
    QTest::addColumn<bool>("parallel");
    QTest::newRow("from above") << QVector<double>{0, 0, 15, 0, 0, 0, 0, 1, 0} << false;
    QTest::newRow("from the left") << QVector<double>{-10, 0, 5, 0, 0, 0, 0, 0, 1} << false;
    QTest::newRow("oblique, turned") << QVector<double>{7, -4, 3, 1, 2, 0, 0.3, 0.2, 1} << false;
    QTest::newRow("parallel projection") << QVector<double>{3, -10, 6, 0, 0, 0, 0, 0, 1} << true;
}

// Each label is drawn where a follower of the same text, position and scale
// would draw it, also after the camera has moved.
void MeasureTest::labelsFaceTheCamera()
{
    QFETCH(QVector<double>, camera);
    QFETCH(bool, parallel);
    auto view = vtkSmartPointer<vtkCamera>::New();
    view->SetPosition(0, 0, 15);
    auto labels = vtkSmartPointer<FacingLabels>::New();
    // Texts are put together from cached characters: spaces and signs too.
    const std::vector<FacingLabels::Label> given{{"near", "100CM", {0, 1, 0}, 0.1},
                                                 {"far", "-1900CM", {-19, 0, 0}, 0.02},
                                                 {"sector", "4.95M @45  x", {3, 2, 0}, 0.12}};
    labels->setLabels(given, view);
    view->SetPosition(camera[0], camera[1], camera[2]);
    view->SetFocalPoint(camera[3], camera[4], camera[5]);
    view->SetViewUp(camera[6], camera[7], camera[8]);
    view->SetParallelProjection(parallel);

    for (const FacingLabels::Label& label : given) {
        auto text = vtkSmartPointer<vtkVectorText>::New();
        text->SetText(label.text.c_str());
        text->Update();
        auto follower = vtkSmartPointer<vtkFollower>::New();
        follower->SetPosition(label.position[0], label.position[1], label.position[2]);
        follower->SetScale(label.scale);
        follower->SetCamera(view);
        vtkMatrix4x4* matrix = follower->GetMatrix();
        const auto drawn = labels->drawnPoints(label.id);
        QCOMPARE(vtkIdType(drawn.size()), text->GetOutput()->GetNumberOfPoints());
        for (size_t i = 0; i < drawn.size(); ++i) {
            double glyph[4] = {0, 0, 0, 1};
            text->GetOutput()->GetPoint(vtkIdType(i), glyph);
            double expected[4];
            matrix->MultiplyPoint(glyph, expected);
            for (int k = 0; k < 3; ++k)
                QVERIFY2(std::abs(drawn[i][size_t(k)] - expected[k]) < 1e-5,
                         qPrintable(QString("%1 point %2").arg(QString::fromStdString(label.id)).arg(i)));
        }
    }
    QCOMPARE(labels->find("far")->text, std::string("-1900CM"));
    QVERIFY(!labels->find("right_grid100"));
}

// The labels reach the screen: in pure red on black, where "300CM" lies
// and not in an area of the same size just below the x axis.
void MeasureTest::labelsAreDrawn()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->overlayColour = QColor(255, 0, 0);
    click(w, "btn_polar");
    auto* labels = FacingLabels::SafeDownCast(shape(w, "right_polar300"));
    QVERIFY(labels);
    QRect area;
    for (const auto& p : labels->drawnPoints("right_polar300"))
        area |= QRect(drawnAt(w, p[0], p[1], p[2]), QSize(1, 1));
    const QImage image = control<QVTKOpenGLNativeWidget>(w, "openGLWidget")->grabFramebuffer();
    const double ratio = view(w)->devicePixelRatioF();
    auto redPixels = [&](const QRect& r) {
        int count = 0;
        for (int y = r.top(); y <= r.bottom(); ++y)
            for (int x = r.left(); x <= r.right(); ++x) {
                const QColor c = image.pixelColor(int(x * ratio), int(y * ratio));
                count += c.red() > 150 && c.green() < 60 && c.blue() < 60;
            }
        return count;
    };
    const int axis = drawnAt(w, 3, 0).y();
    QVERIFY2(area.bottom() <= axis + 1, qPrintable(QString("%1 %2").arg(area.bottom()).arg(axis)));
    QVERIFY2(redPixels(area) > area.width() * area.height() / 10, qPrintable(QString::number(redPixels(area))));
    QCOMPARE(redPixels(QRect(area.left(), axis + 3, area.width(), area.height())), 0);
}

// Single picks, a ranging pair, a single pick after it, a click on empty
// space and the reset by the box toggle, clicked where the points are drawn.
void MeasureTest::picking()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->showFrame(crossFrame());
    QStandardItemModel* table = w->tableModel();

    clickAt(w, drawnAt(w, 1.0, 1.0));  // (1.1, 1) is 10 cm away: the nearer one wins
    QCOMPARE(int(w->clickCloud().size()), 1);
    QCOMPARE(w->clickCloud().points[0].x, 1.0f);
    QCOMPARE((QList<int>{w->clickCloud().points[0].r, w->clickCloud().points[0].g}), (QList<int>{255, 0}));
    QVERIFY(w->viewer().contains("m_clickPointCloud"));
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(table->item(0, 0)->text(), QStringLiteral("4"));  // its index in the drawn cloud
    QCOMPARE(table->item(0, 2)->text(), QStringLiteral("45.00"));

    // Empty space, 0.5 m from any point: nothing changes.
    clickAt(w, drawnAt(w, -0.5, 0.5));
    QCOMPARE(w->clickCloud().points[0].x, 1.0f);
    QCOMPARE(table->rowCount(), 1);

    click(w, "btn_ranging");
    QVERIFY(w->isRangingActive());
    clickAt(w, drawnAt(w, -1.0, 0.0));
    mouse(w, QEvent::MouseMove, drawnAt(w, 0.0, 0.0));  // the rubber band follows the cursor
    QVERIFY(shape(w, "m_ranging_line"));
    QVERIFY(label3D(w, "m_ranging_text").endsWith('M'));
    clickAt(w, drawnAt(w, 1.0, 0.0));
    QCOMPARE(label3D(w, "m_ranging_text"), QStringLiteral("2.00M"));
    // The distance first, as it always read; the bearing and offsets after it.
    QCOMPARE(w->statusBar()->currentMessage(),
             QString::fromUtf8("Distance between two points:2.00  Bearing:0.00°  Δx:200.00 CM  Δy:0.00 CM"));
    QCOMPARE(table->rowCount(), 2);
    QCOMPARE(table->item(1, 2)->text(), QStringLiteral("90.00"));
    // A new frame keeps ranging on and the fixed line in place.
    w->showFrame(crossFrame());
    QVERIFY(w->isRangingActive() && shape(w, "m_ranging_line"));

    // A single pick after the pair wipes the line and the label.
    click(w, "btn_ranging");
    clickAt(w, drawnAt(w, 0.0, -1.0));
    QVERIFY(!shape(w, "m_ranging_line") && label3D(w, "m_ranging_text").isNull());
    QCOMPARE(table->item(0, 2)->text(), QStringLiteral("180.00"));

    // The box toggle resets: ranging off, every mark gone.
    click(w, "btn_ranging");
    clickAt(w, drawnAt(w, 0.0, 1.0));
    click(w, "btn_point_cloud_select");
    QVERIFY(!w->isRangingActive() && !control<QAbstractButton>(w, "btn_ranging")->isChecked());
    QVERIFY(!w->viewer().contains("m_clickPointCloud"));
    click(w, "btn_point_cloud_select");
    // The first point still waits for its partner, whatever was toggled.
    click(w, "btn_ranging");
    clickAt(w, drawnAt(w, 0.0, -1.0));
    QCOMPARE(label3D(w, "m_ranging_text"), QStringLiteral("2.00M"));
}

void MeasureTest::rangingPairs_data()
{
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<QString>("label");
    QTest::addColumn<double>("scale");
    // What follows the distance in the status bar.
    QTest::addColumn<QString>("bearing");
    QTest::newRow("3 m along x") << QPointF(-1.5, 0) << QPointF(1.5, 0) << "3.00M" << 0.18
                                 << "  Bearing:0.00°  Δx:300.00 CM  Δy:0.00 CM";
    QTest::newRow("the same point twice") << QPointF(1, 1) << QPointF(1, 1) << "0.00M" << 0.0
                                          << "  Bearing:  Δx:0.00 CM  Δy:0.00 CM";
    QTest::newRow("diagonal") << QPointF(1, 1) << QPointF(-1, -2) << "3.61M" << std::sqrt(13.0f) * 0.06
                              << "  Bearing:236.31°  Δx:-200.00 CM  Δy:-300.00 CM";
    QTest::newRow("back along -x") << QPointF(1, 0) << QPointF(-1, 0) << "2.00M" << 0.12
                                   << "  Bearing:180.00°  Δx:-200.00 CM  Δy:0.00 CM";
}

void MeasureTest::rangingPairs()
{
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QFETCH(QString, label);
    QFETCH(double, scale);
    QFETCH(QString, bearing);
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->showFrame(makeFrame({{0, float(a.x()), float(a.y()), 10, 10}, {0, float(b.x()), float(b.y()), 20, 10}}));
    click(w, "btn_ranging");
    clickAt(w, drawnAt(w, a.x(), a.y()));
    clickAt(w, drawnAt(w, b.x(), b.y()));
    QCOMPARE(label3D(w, "m_ranging_text"), label);
    auto* text = vtkFollower::SafeDownCast(shape(w, "m_ranging_text"));
    QVERIFY(std::abs(text->GetScale()[0] - scale) < 1e-6);
    QCOMPARE(text->GetPosition()[0], (a.x() + b.x()) / 2);
    QCOMPARE(w->statusBar()->currentMessage(), "Distance between two points:" + label.chopped(1) + bearing);
}

// A rubber band dragged over two points makes the box; the dialog shows and
// edits its bounds, and the edit applies to the frame on screen at once.
void MeasureTest::boxByDragAndByNumbers()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->showFrame(crossFrame());
    vtkRenderWindowInteractor* interactor = control<QVTKOpenGLNativeWidget>(w, "openGLWidget")->interactor();
    QVERIFY(!interactor->GetPicker()->IsA("vtkAreaPicker"));
    click(w, "btn_point_cloud_select");
    QVERIFY(interactor->GetPicker()->IsA("vtkAreaPicker"));

    // Around (1, 1) and (1.1, 1) only.
    const QPoint from = drawnAt(w, 0.8, 1.3), to = drawnAt(w, 1.3, 0.7);
    mouse(w, QEvent::MouseButtonPress, from, Qt::LeftButton);
    mouse(w, QEvent::MouseMove, (from + to) / 2, Qt::LeftButton);
    mouse(w, QEvent::MouseMove, to, Qt::LeftButton);
    mouse(w, QEvent::MouseButtonRelease, to);
    QVERIFY(w->isBoxActive());
    BoxRange box = w->getBoxRange();
    QCOMPARE((QList<float>{box.min.x, box.min.y, box.max.x, box.max.y}), (QList<float>{1.0f, 1.0f, 1.1f, 1.0f}));
    QVERIFY(control(w, "btn_resize_range")->isEnabled());
    click(w, "btn_point_cloud_select");
    QVERIFY(!interactor->GetPicker()->IsA("vtkAreaPicker"));

    w->showFrame(crossFrame());
    QCOMPARE(int(w->boxCloud().size()), 2);
    QCOMPARE(labelText(w, "label_delta_x"), QStringLiteral("Δx:10.00 CM"));
    QCOMPARE(labelText(w, "label_delta_y"), QStringLiteral("Δy:0.00 CM"));
    QCOMPARE(labelText(w, "label_delta_distance"), QStringLiteral("Δdistance:7.20 CM"));  // 1414 to 1486 mm

    // The dialog shows the box; Ok widens it to x = -1 .. 1.1, y = -1 .. 1.
    QStringList shown;
    auto* dialog = onModal<BoxSelectionDialog>([&] { click(w, "btn_resize_range"); }, [&](BoxSelectionDialog* d) {
        for (const char* name : {"spin_min_x", "spin_min_y", "spin_max_x", "spin_max_y"})
            shown << d->findChild<QDoubleSpinBox*>(name)->text();
        d->findChild<QDoubleSpinBox*>("spin_min_x")->setValue(-1.0);
        d->findChild<QDoubleSpinBox*>("spin_min_y")->setValue(-1.0);
        d->findChild<QAbstractButton*>("btn_ok")->click();
    });
    QVERIFY(dialog && dialog->windowTitle() == QStringLiteral("Box Selection Settings"));
    QCOMPARE(shown, (QStringList{"1.00", "1.00", "1.10", "1.00"}));
    box = w->getBoxRange();
    QCOMPARE((QList<float>{box.min.x, box.min.y, box.max.x, box.max.y}), (QList<float>{-1.0f, -1.0f, 1.1f, 1.0f}));
    QCOMPARE(int(w->boxCloud().size()), 6);
    QCOMPARE(labelText(w, "label_delta_x"), QStringLiteral("Δx:210.00 CM"));

    // Cancel keeps the box; the same dialog comes back.
    QCOMPARE(onModal<BoxSelectionDialog>([&] { click(w, "btn_resize_range"); },
                                         [](BoxSelectionDialog* d) {
                                             d->findChild<QDoubleSpinBox*>("spin_max_x")->setValue(0.0);
                                             d->findChild<QAbstractButton*>("btn_cancel")->click();
                                         }),
             dialog);
    QCOMPARE(w->getBoxRange().max.x, 1.1f);
}

void MeasureTest::cursorAzimuth_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<QString>("azimuth");
    QTest::addColumn<QString>("distance");
    QTest::newRow("x > 0, y > 0") << 1.0 << 1.0 << "Azimuth:45" << "Distance:1.41421";
    QTest::newRow("x > 0, y < 0") << 1.0 << -1.0 << "Azimuth:135" << "Distance:1.41421";
    QTest::newRow("x < 0, y < 0") << -1.0 << -1.0 << "Azimuth:225" << "Distance:1.41421";
    QTest::newRow("x < 0, y > 0") << -1.0 << 1.0 << "Azimuth:315" << "Distance:1.41421";
    QTest::newRow("+x axis") << 2.0 << 0.0 << "Azimuth:-90" << "Distance:2";
    QTest::newRow("-x axis") << -2.0 << 0.0 << "Azimuth:-90" << "Distance:2";
    QTest::newRow("+y axis") << 0.0 << 3.0 << "Azimuth:0" << "Distance:3";
    QTest::newRow("-y axis") << 0.0 << -3.0 << "Azimuth:0" << "Distance:3";
    QTest::newRow("30 degrees") << 0.5 << std::sqrt(3.0) / 2 << "Azimuth:30" << "Distance:1";
    QTest::newRow("the origin has no azimuth") << 0.0 << 0.0 << "Azimuth:" << "Distance:0";
}

void MeasureTest::cursorAzimuth()
{
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(QString, azimuth);
    QFETCH(QString, distance);
    QCOMPARE(ReadoutTexts::azimuth(ReadoutTexts::cursorAzimuth(x, y)), azimuth);
    QCOMPARE(ReadoutTexts::distance(std::hypot(x, y)), distance);
}

void MeasureTest::frameReadouts_data()
{
    QTest::addColumn<int>("speed");
    QTest::addColumn<int>("ambient");
    QTest::addColumn<QString>("dateTime");
    QTest::addColumn<QString>("speedText");
    QTest::newRow("600 rpm, ambient, date-time") << 600 << 37 << "2024-05-06 07:08:09" << "motor speed: 10 hz,600 r/s";
    QTest::newRow("half way rounds up") << 630 << 0 << "" << "motor speed: 11 hz,630 r/s";
    QTest::newRow("negative half rounds up too") << -90 << -1 << "" << "motor speed: -1 hz,-90 r/s";
    QTest::newRow("nothing supplied") << -1 << -1 << "" << "motor speed:";
}

void MeasureTest::frameReadouts()
{
    QFETCH(int, speed);
    QFETCH(int, ambient);
    QFETCH(QString, dateTime);
    QFETCH(QString, speedText);
    auto window = openWindow();
    ScanDeck* w = window.get();
    Frame withAll = crossFrame();
    withAll.motorSpeed = 1200, withAll.ambient = 99, withAll.dateTime = QStringLiteral("earlier");
    w->showFrame(withAll);
    Frame frame = crossFrame();
    frame.motorSpeed = speed, frame.ambient = ambient, frame.dateTime = dateTime;
    w->showFrame(frame);
    QCOMPARE(labelText(w, "label_motor_speed"), speedText);
    // An earlier frame's texts do not linger when this one has none.
    QCOMPARE(text2D(w, "Ambient"), ambient == -1 ? QString() : "Ambient:" + QString::number(ambient));
    QCOMPARE(text2D(w, "DateTime"), dateTime.isEmpty() ? QString() : dateTime);
    QCOMPARE(labelText(w, "label_delta_x"), QStringLiteral("Δx:"));  // no box
}

// The cursor's spot on the ground plane; box mode rests the readouts.
void MeasureTest::hoverReadouts()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->showFrame(crossFrame());
    // The window's own texts until the cursor gives the first readout.
    QCOMPARE(labelText(w, "label_azimuth") + labelText(w, "label_distance"), QStringLiteral("azimuth:distance"));
    mouse(w, QEvent::MouseMove, drawnAt(w, 1.0, -1.0));
    const double azimuth = labelText(w, "label_azimuth").section(':', 1).toDouble();
    const double distance = labelText(w, "label_distance").section(':', 1).toDouble();
    QVERIFY2(std::abs(azimuth - 135) < 1 && std::abs(distance - std::sqrt(2.0)) < 0.02,
             qPrintable(labelText(w, "label_azimuth") + " " + labelText(w, "label_distance")));
    click(w, "btn_point_cloud_select");
    mouse(w, QEvent::MouseMove, drawnAt(w, 1.0, 1.0));
    QCOMPARE(labelText(w, "label_azimuth") + labelText(w, "label_distance"), QStringLiteral("Azimuth:Distance:"));
}

SCANDECK_TEST_MAIN(MeasureTest)
#include "tst_measure.moc"
