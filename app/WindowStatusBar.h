#pragma once
// What the main window's status bar holds, left to right, wrapping into a
// second row on a narrow window: the recording readout, the link status,
// the export's progress bar, "display behind", a link to the Point Cloud
// Library and the six readouts (motor speed, Δx, Δy, Δdistance, azimuth,
// distance).

#include <QCoreApplication>
#include <memory>

class LinkStatusReadout;
class QLabel;
class QMainWindow;
class QProgressBar;
class QWidget;
class RecordingReadout;
class StatusReadouts;

namespace pcl {
namespace visualization {
class PCLVisualizer;
}
}  // namespace pcl

class WindowStatusBar {
    Q_DECLARE_TR_FUNCTIONS(ScanDeck)
public:
    WindowStatusBar(QMainWindow* window, pcl::visualization::PCLVisualizer& viewer, QWidget* view);
    ~WindowStatusBar();

    // The texts the window sets itself, in the current language.
    void retranslate();
    // "display behind: N frames skipped", hidden while none were.
    void showSkipped(quint64 skipped);

    RecordingReadout* recording = nullptr;
    LinkStatusReadout* link = nullptr;
    QProgressBar* progress = nullptr;
    QLabel* displayBehind = nullptr;
    QLabel* pclLink = nullptr;
    std::unique_ptr<StatusReadouts> readouts;
};
