#pragma once
// The main window: the 3D view of the current frame, the side panel with the
// live, offline and device pages, the view and measurement tools, the point
// table and the status bar. The dialogs reach it only through its four
// interfaces. It wires its controls to the parts that do the work and hands
// on what they make: a frame goes through FrameDisplay (the display
// pipeline) to the overlays, measuring is MeasureTools', the live page
// LiveControls', the CSV export CsvExportControl's.

#include "AutoConnector.h"
#include "CsvExport.h"
#include "FrameDisplay.h"
#include "IboxSelection.h"
#include "IConnectLiDAR.h"
#include "IGridPolar.h"
#include "ITableViewToolBar.h"
#include "LidarRecords.h"
#include "PclForward.h"

#include <QMainWindow>
#include <QString>
#include <future>
#include <memory>
#include <vector>

#include <vtkSmartPointer.h>

class AboutDialog;
class BoxOverlay;
class BoxSelectionDialog;
class ColourLegendOverlay;
class CsvExportControl;
class DeviceSettingsPanel;
class ExportDataDialog;
class GridPolarDialog;
class KeyboardShortcuts;
class LidarAnalysis;
class LiveControls;
class LiveFrameQueue;
class MeasureTools;
class NetworkToolLauncher;
class OverlayPainter;
class QStandardItemModel;
class QTabBar;
class RangingOverlay;
class SelectConnectType;
class ViewExportTools;
class ViewOverlay;
class WindowLanguage;
class WindowStatusBar;
class vtkGenericOpenGLRenderWindow;
class vtkOrientationMarkerWidget;
class vtkRenderer;

namespace Ui {
class ScanDeckClass;
}

class ScanDeck : public QMainWindow,
                 public IConnectLiDAR,
                 public IGridPolar,
                 public IboxSelection,
                 public ITableViewToolBar {
    Q_OBJECT
public:
    using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;
    using FrameTimings = FrameDisplay::Timings;
    // The save-file dialog of the recording and the exports (parent,
    // caption, proposed name, filter); an empty result means cancelled.
    using SaveFileHook = std::function<QString(QWidget* parent, const QString& caption, const QString& proposed,
                                               const QString& filter)>;
    // Shows the CSV export dialog modally; true when it was accepted. Tests
    // fill it in and press OK instead.
    using ExportDialogHook = std::function<bool(ExportDataDialog& dialog)>;

    // The OpenGL format VTK needs; call before the QApplication is made.
    static void prepareGraphics();

    explicit ScanDeck(QWidget* parent = nullptr);
    ~ScanDeck() override;

    // IConnectLiDAR
    bool ConnectNetworkLidar(const QString& model, const NetworkParam& param) override;
    bool ConnectSerialLidar(const QString& model, const SerialPortParam& param) override;
    // IGridPolar
    void showGrid(bool on) override;
    void showPolar(bool on) override;
    // IboxSelection
    void setBoxRange(const BoxCorner& min, const BoxCorner& max) override;
    BoxRange getBoxRange() const override;
    // ITableViewToolBar
    void setTableRows(int rows) override { m_settings.tableRows = rows; }
    void setTablePrecision(int precision) override { m_settings.precision = precision; }

    // The view's rubber band, a click on a point, a ranging click (MeasureTools).
    void areaPicked(const std::vector<int>& indices);
    void singlePick(int index, const pcl::PointXYZRGB& point);
    void rangingStep(int index, const pcl::PointXYZRGB& point);

    // Blocks until the start-up wiring thread has made every connection.
    void waitUntilWired();

    // Empty hooks restore the defaults (QFileDialog, the system's serial ports).
    void setSaveFileHook(SaveFileHook hook) { m_saveFileHook = std::move(hook); }
    void setSerialPortLister(AutoConnector::PortLister lister);
    void setExportDialogHook(ExportDialogHook hook);

    // Read access for the tools, the benchmarks and the tests.
    std::shared_ptr<LidarAnalysis> session() const;
    bool isLidarConnected() const;
    bool isPlaying() const;
    SelectConnectType* connectDialog() const;
    LiveFrameQueue* liveFrames() const { return m_liveFrames; }
    DeviceSettingsPanel* devicePanel() const { return m_devicePanel; }
    NetworkToolLauncher* networkTool() const { return m_networkTool; }
    int pointSize() const { return m_pointSize; }
    float minAngle() const { return m_settings.minAngle; }
    float maxAngle() const { return m_settings.maxAngle; }
    int tableRows() const { return m_settings.tableRows; }
    int tablePrecision() const { return m_settings.precision; }
    bool isBoxActive() const;
    const Cloud& frameCloud() const { return m_display->cloud(); }
    const Cloud& boxCloud() const;
    QStandardItemModel* tableModel() const { return m_tableModel; }
    pcl::visualization::PCLVisualizer& viewer() const { return *m_viewer; }
    vtkRenderer* renderer() const;
    const lidar::LidarDataPoint_V4& lastFrame() const { return m_display->lastFrame(); }
    const FrameTimings& lastFrameTimings() const { return m_display->timings(); }
    bool isRangingActive() const;
    const Cloud& clickCloud() const;
    const OverlayPainter& overlays() const { return *m_painter; }
    GridPolarDialog* gridPolarDialog() const { return m_gridPolarDialog; }
    BoxSelectionDialog* boxSelectionDialog() const { return m_boxDialog; }
    const CsvExport& csvExport() const;

signals:
    void SendMessageSignal(QString message);
    void SendEndSaveDataSignal(QString fileName);
    void SendDataSavingProgressSianal(float progress);

public slots:
    // The display slot for live and offline frames.
    void showFrame(lidar::LidarDataPoint_V4 frame);
    void setPointSize(int size);
    void setMinAngle(const QString& text);
    void setMaxAngle(const QString& text);
    void setCameraView();  // the sender decides the view
    void showAxes(bool on);
    void switchLanguage(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void initUi();
    void initViewer();
    void initTable();
    void initParts();
    void initShortcuts();
    void wireSignals();
    void wireOfflinePlayer();
    display::ViewSettings viewSettings() const;
    QString askSavePath(QWidget* parent, const QString& caption, const QString& proposed, const QString& filter);

    // Operations wired to the controls.
    void toggleTabPanel();
    void restartProgram();
    void showAbout();
    void showWarning(const QString& message);
    void showFileSaved(const QString& fileName);
    void clearView();
    void showBoxRangeDialog();
    void showGridPolarDialog();
    void playDroppedFile(const QString& path);
    // The window title while a recording plays: its model and file name.
    void showPlaybackTitle(const QString& path);
    // A live frame the display had to skip still goes into a running export.
    void exportSkippedFrame(lidar::LidarDataPoint_V4 frame);

    Ui::ScanDeckClass* ui;
    vtkSmartPointer<vtkGenericOpenGLRenderWindow> m_renderWindow;
    vtkSmartPointer<vtkOrientationMarkerWidget> m_orientationMarker;
    std::shared_ptr<pcl::visualization::PCLVisualizer> m_viewer;
    QStandardItemModel* m_tableModel = nullptr;
    display::ViewSettings m_settings;  // angle range, colour mode, table rows and precision
    int m_pointSize = 4;
    int m_overlayCount = 20;  // each overlay reaches count x step
    QString m_playbackModel;
    SaveFileHook m_saveFileHook;

    std::unique_ptr<FrameDisplay> m_display;
    std::unique_ptr<WindowStatusBar> m_status;
    std::unique_ptr<OverlayPainter> m_painter;
    std::unique_ptr<ViewOverlay> m_grid;
    std::unique_ptr<ViewOverlay> m_polar;
    std::unique_ptr<BoxOverlay> m_box;
    std::unique_ptr<RangingOverlay> m_ranging;
    ColourLegendOverlay* m_legend = nullptr;
    std::unique_ptr<MeasureTools> m_measure;
    std::unique_ptr<LiveControls> m_live;
    std::unique_ptr<CsvExportControl> m_export;
    LiveFrameQueue* m_liveFrames = nullptr;
    WindowLanguage* m_language = nullptr;
    AboutDialog* m_about = nullptr;
    DeviceSettingsPanel* m_devicePanel = nullptr;
    NetworkToolLauncher* m_networkTool = nullptr;
    KeyboardShortcuts* m_shortcuts = nullptr;
    ViewExportTools* m_viewExport = nullptr;
    GridPolarDialog* m_gridPolarDialog = nullptr;
    BoxSelectionDialog* m_boxDialog = nullptr;
    QTabBar* m_tabBar = nullptr;
    std::promise<void> m_wired;
    std::shared_future<void> m_wiredFuture;
};
