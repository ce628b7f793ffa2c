// scandeck-readme-shots: the README's pictures of the measurement tools,
// taken from the real window on the demo lidar (simulated, loopback only)
// and driven the way an operator drives it: buttons clicked, points clicked
// and a rubber band dragged with the mouse in the view; then the player
// loading a long recording. Run it under a virtual display of the README's
// size, from the build directory:
//   xvfb-run -a -s "-screen 0 1600x900x24" ./scandeck-readme-shots ../docs

#include "BoxSelectionDialog.h"
#include "DemoLidar.h"
#include "GridPolarDialog.h"
#include "LIdarFactory.h"
#include "OffinePlayWidget.h"
#include "ScanDeck.h"
#include "ShotSupport.h"
#include "SimRecording.h"
#include "SlowOfflineParser.h"
#include "Wren_Plus.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QMouseEvent>
#include <QScreen>
#include <QComboBox>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <functional>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

namespace {

constexpr char kTool[] = "scandeck-readme-shots";
int failedPictures = 0;

using shots::click;

QWidget* view(ScanDeck& window)
{
    return window.findChild<QWidget*>(QStringLiteral("openGLWidget"));
}

// Where a world point is drawn, in the view's widget coordinates.
QPoint drawnAt(ScanDeck& window, double x, double y)
{
    vtkRenderer* renderer = window.renderer();
    renderer->SetWorldPoint(x, y, 0.0, 1.0);
    renderer->WorldToDisplay();
    double display[3];
    renderer->GetDisplayPoint(display);
    const double ratio = view(window)->devicePixelRatioF();
    const int height = renderer->GetRenderWindow()->GetSize()[1];
    return QPoint(qRound(display[0] / ratio), qRound((height - 1 - display[1]) / ratio));
}

// The drawn position of the frame's point nearest to (x, y).
QPoint pointNear(ScanDeck& window, double x, double y)
{
    const auto& cloud = window.frameCloud();
    size_t best = 0;
    double bestDistance = 1e9;
    for (size_t i = 0; i < cloud.size(); ++i) {
        const double d = std::hypot(cloud.points[i].x - x, cloud.points[i].y - y);
        if (d < bestDistance)
            best = i, bestDistance = d;
    }
    return drawnAt(window, cloud.points[best].x, cloud.points[best].y);
}

void mouse(ScanDeck& window, QEvent::Type type, const QPoint& at, Qt::MouseButtons buttons = Qt::NoButton)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, view(window)->mapToGlobal(at), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(view(window), &event);
}

void clickAt(ScanDeck& window, const QPoint& at)
{
    mouse(window, QEvent::MouseButtonPress, at, Qt::LeftButton);
    mouse(window, QEvent::MouseButtonRelease, at);
}

// The screen, so that a dialog over the window is in the picture.
void save(const QString& path, const QRect& area)
{
    if (!shots::saveScreen(area, path))
        ++failedPictures;
}

// Opens a modal dialog with `open`, places it, lets frames arrive, takes the
// picture and closes the dialog.
void shootWithDialog(const std::function<void()>& open, const QPoint& at, const QString& path, const QRect& area)
{
    QTimer::singleShot(200, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog)
            dialog->move(at);
        shots::settle(1200);
        save(path, area);
        if (dialog)
            dialog->close();
    });
    open();
}

}  // namespace

int main(int argc, char* argv[])
{
    shots::prepare();
    QApplication app(argc, argv);
    const QDir out(app.arguments().value(1, QStringLiteral(".")));
    shots::answerMessages(kTool);
    {
        ScanDeck window;
        shots::showWindow(window, QSize(1600, 900));
        DemoLidar demo;
        QString error;
        if (!demo.start(DemoLidar::defaultModel(), window, &error))
            return shots::fail(kTool, error);
        shots::settle(1500);
        const QRect whole = window.frameGeometry();

        // Grid and polar rings, with their dialog.
        click(window, "btn_grid");
        click(window, "btn_polar");
        shootWithDialog([&] { click(window, "btn_set_grid_polar"); }, QPoint(1060, 420),
                        out.filePath(QStringLiteral("measure-overlays.png")), whole);
        click(window, "btn_polar");

        // A distance measured between the west wall and the round pillar,
        // the cursor resting on a point of the south wall.
        click(window, "btn_ranging");
        clickAt(window, pointNear(window, -3.2, 1.0));
        mouse(window, QEvent::MouseMove, drawnAt(window, -1.0, 1.1));
        shots::settle(300);
        clickAt(window, pointNear(window, 1.25, 1.2));
        mouse(window, QEvent::MouseMove, pointNear(window, 2.0, -2.3));
        shots::settle(800);
        save(out.filePath(QStringLiteral("measure-ranging.png")), whole);
        click(window, "btn_ranging");

        // A box dragged around the square pillar, then its bounds in the dialog.
        click(window, "btn_point_cloud_select");
        const QPoint from = drawnAt(window, -2.1, -0.5), to = drawnAt(window, -1.1, -1.5);
        mouse(window, QEvent::MouseButtonPress, from, Qt::LeftButton);
        mouse(window, QEvent::MouseMove, (from + to) / 2, Qt::LeftButton);
        mouse(window, QEvent::MouseMove, to, Qt::LeftButton);
        mouse(window, QEvent::MouseButtonRelease, to);
        click(window, "btn_point_cloud_select");
        shots::settle(800);
        shootWithDialog([&] { click(window, "btn_resize_range"); }, QPoint(1040, 520),
                        out.filePath(QStringLiteral("measure-box.png")), whole);

        // The readouts: the cursor on the round pillar, the box's extent,
        // the motor speed; the frame's ambient value is drawn in the view.
        mouse(window, QEvent::MouseMove, pointNear(window, 1.25, 1.2));
        shots::settle(500);
        const QRect bar = window.statusBar()->geometry().translated(window.geometry().topLeft());
        const int left = window.findChild<QWidget*>(QStringLiteral("label_motor_speed"))->mapTo(&window, QPoint()).x();
        save(out.filePath(QStringLiteral("measure-readouts.png")), bar.adjusted(left - 8, 0, 0, 0));

        click(window, "btn_disconnect");
        demo.stop();
        shots::settle(300);

        // The player opening an hour of a Wren_Plus, its index slowed down
        // here so that the frame count is still growing in the picture.
        QTemporaryDir dir;
        const QString recording = dir.filePath(QStringLiteral("Wren_Plus_1h.txt"));
        sim::SimOptions options;
        options.model = sim::Model::Wren_Plus;
        if (!sim::writeRecording(options, 36000, recording, &error))
            return shots::fail(kTool, error);
        testing::SlowParsing slow(QStringLiteral("Wren_Plus"), 40);
        OffinePlayWidget* player = &shots::openInPlayer(window, recording, kTool);
        player->findChild<QComboBox*>(QStringLiteral("comboBox"))->setCurrentIndex(3);
        click(window, "btn_play");
        shots::settle(2500);
        save(out.filePath(QStringLiteral("player-indexing.png")), whole);
        player->stop();
        LIdarFactory::GetInstance()->Shutdown();
    }
    return failedPictures == 0 ? 0 : 1;
}
