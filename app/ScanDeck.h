#pragma once
// The main window: the 3D view of the current frame, the side panel with the
// live, offline and device pages, the view and measurement tools, the point
// table and the status bar. The dialogs reach it only through its four
// interfaces. The per-frame work is done by small helpers (frame selection,
// cloud fill, table rows); this class wires them to the widgets and the view.

#include "AutoConnector.h"
#include "CsvExport.h"
#include "IboxSelection.h"
#include "IConnectLiDAR.h"
#include "IGridPolar.h"
#include "ITableViewToolBar.h"
#include "LidarRecords.h"
#include "LiveConnection.h"
#include "PclForward.h"

#include <QFile>
#include <QMainWindow>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <future>
#include <memory>
#include <vector>

#include <vtkSmartPointer.h>

class AboutDialog;
class BoxSelectionDialog;
class DeviceSettingsPanel;
class GridPolarDialog;
class ExportDataDialog;
class ColourLegendOverlay;
class KeyboardShortcuts;
class LinkStatusReadout;
class RecordingReadout;
class LidarAnalysis;
class LiveFrameQueue;
class NetworkToolLauncher;
class OverlayPainter;
class QAbstractButton;
class QLabel;
class QMouseEvent;
class QProgressBar;
class QStandardItemModel;
class QTabBar;
class QTranslator;
class RangingMarks;
class SelectConnectType;
class StatusReadouts;
class TableViewToolBar;
class ViewExportTools;
class vtkGenericOpenGLRenderWindow;
class vtkOrientationMarkerWidget;
class vtkRenderer;
class vtkWorldPointPicker;

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
    using CloudPtr = std::shared_ptr<Cloud>;

    // A picked point of the ranging tool: position and colour.
    struct ScenePoint {
        float x = 0.0f, y = 0.0f, z = 0.0f, w = 1.0f;
        uint8_t r = 0, g = 0, b = 0, a = 255;
    };

    // Where the time of the last frame went, for the display benchmark:
    // ScanDeck's own work (rounding, box test, colouring, table rows, cloud
    // fill), the viewer's remove-and-add of the clouds, and the render.
    struct FrameTimings {
        qint64 ownNs = 0;
        qint64 viewerNs = 0;
        qint64 renderNs = 0;
    };

    // The save-file dialog of the recording (parent, caption, proposed
    // name, filter); an empty result means the user cancelled.
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
    void setTableRows(int rows) override;
    void setTablePrecision(int precision) override;

    // Rebuilds one cloud from one frame and redraws it under `id`. An empty
    // colour name colours by the colour mode; rowLimit -1 lists every point.
    void updateCloud(const lidar::LidarDataPoint_V4& frame, const CloudPtr& cloud, int size,
                     const QString& colourName, const QString& id, int rowLimit);
    // Appends one point to the point table.
    void addTableRow(int id, const lidar::LidarPoint& point);
    // The view's rubber band picked these points of the displayed cloud:
    // their bounding box becomes the selection box, which is now in force.
    void areaPicked(const std::vector<int>& indices);
    // A click found this point (index in the displayed cloud): marked alone,
    // or as one end of a ranging pair while range finding is on.
    void singlePick(int index, const pcl::PointXYZRGB& point);
    void rangingStep(int index, const pcl::PointXYZRGB& point);

    // Blocks until the start-up wiring thread has made every connection.
    void waitUntilWired();

    // Empty hooks restore the defaults (QFileDialog, the system's serial ports).
    void setSaveFileHook(SaveFileHook hook) { m_saveFileHook = std::move(hook); }
    void setSerialPortLister(AutoConnector::PortLister lister) { m_serialPorts = std::move(lister); }
    void setExportDialogHook(ExportDialogHook hook) { m_exportDialogHook = std::move(hook); }

    // The live session (null before the first connection attempt).
    std::shared_ptr<LidarAnalysis> session() const { return m_live.session(); }
    bool isLidarConnected() const { return m_live.isConnected(); }
    bool isPlaying() const { return m_playing; }
    // The connection dialog, once btn_connect has made it.
    SelectConnectType* connectDialog() const { return m_connectDialog; }
    // Carries live frames to showFrame; skips the oldest when drawing falls behind.
    LiveFrameQueue* liveFrames() const { return m_liveFrames; }
    // The "Setting" tab's device controls and the network module tool.
    DeviceSettingsPanel* devicePanel() const { return m_devicePanel; }
    NetworkToolLauncher* networkTool() const { return m_networkTool; }

    // Read access for the measurement tools, the benchmark and the tests.
    int pointSize() const { return m_pointSize; }
    float minAngle() const { return m_minAngle; }
    float maxAngle() const { return m_maxAngle; }
    int tableRows() const { return m_tableRows; }
    int tablePrecision() const { return m_precision; }
    bool isBoxActive() const { return m_boxActive; }
    const Cloud& frameCloud() const { return *m_cloud; }
    const Cloud& boxCloud() const { return *m_boxCloud; }
    QStandardItemModel* tableModel() const { return m_tableModel; }
    pcl::visualization::PCLVisualizer& viewer() const { return *m_viewer; }
    vtkRenderer* renderer() const;
    const lidar::LidarDataPoint_V4& lastFrame() const { return m_lastFrame; }
    const FrameTimings& lastFrameTimings() const { return m_timings; }
    bool isRangingActive() const { return m_rangingActive != 0; }
    const Cloud& clickCloud() const { return *m_clickCloud; }
    const OverlayPainter& overlays() const { return *m_overlays; }
    // The dialogs, once their buttons have made them (null before).
    GridPolarDialog* gridPolarDialog() const { return m_gridPolarDialog; }
    BoxSelectionDialog* boxSelectionDialog() const { return m_boxDialog; }
    const CsvExport& csvExport() const { return m_csvExport; }

signals:
    void SendMessageSignal(QString message);
    void SendEndSaveDataSignal(QString fileName);
    void SendDataSavingProgressSianal(float progress);

public slots:
    // The display slot for live and offline frames. The frame is rounded in
    // place; the rounded frame is what the table, the CSV file and the stored
    // last frame see.
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
    void initStatusBar();
    void initShortcuts();
    void applyStyleSheet();
    void applyStartLanguage();
    void retranslateOwnTexts();
    void resetReadouts();
    void wireSignals();
    void wireOfflinePlayer();
    void wireSessionSignals();
    void renderView();
    // Enables the live controls for the connected or the start state.
    void applyLiveState(bool connected);
    // What a confirmed connection changes in the window.
    void enterConnectedState();
    // The link status follows the connected session's traffic.
    void watchLink();
    void watchRecording(const QString& fileName);
    QString askSavePath(const QString& proposed);
    // The save dialogs of the exports: the test hook when there is one.
    QString askSavePath(QWidget* parent, const QString& caption, const QString& proposed, const QString& filter);
    void initExportTools();
    // What an export of the current frame saves: the box's points while
    // the box is in force, else the whole frame last shown.
    lidar::LidarDataPoint_V4 frameToExport() const;

    // Operations wired to the controls.
    void toggleTabPanel();
    void slideInTab(int index);
    void restartProgram();
    void showAbout();
    void showWarning(const QString& message);
    void showSavingProgress(float progress);
    void showFileSaved(const QString& fileName);
    void showExportSaved(const QString& fileName);
    void toggleTablePane(bool open);
    void clearView();
    void setRangingMode(bool on);
    void autoConnect();
    void showConnectDialog();
    void disconnectLidar();
    void playPause(bool play);
    void recordData(bool record);
    void exportCsv(QAbstractButton* button, bool checked);
    void toggleBoxSelection(bool on);
    void showBoxRangeDialog();
    void showGridPolarDialog();
    void toggleGpsTest();
    void startNetworkTool();
    void configureDevicePanel(const QString& group);
    void playDroppedFile(const QString& path);
    // Mouse over the 3D view: readouts and the ranging preview on moves,
    // picking on clicks.
    void handleViewMouse(QMouseEvent* event);
    void hoverAt(const QPoint& position);
    void pickAt(const QPoint& position);
    // Lists the picked point of the displayed cloud in the table.
    void addPickedRow(int index);
    // Range finding off and its marks gone from the view.
    void resetMeasurement();
    // The window title while a recording plays: its model and file name.
    void showPlaybackTitle(const QString& path);
    void writeCsvFrame(const lidar::LidarDataPoint_V4& frame);
    // A live frame the display had to skip still goes into a running export.
    void exportSkippedFrame(lidar::LidarDataPoint_V4 frame);

    Ui::ScanDeckClass* ui;
    vtkSmartPointer<vtkGenericOpenGLRenderWindow> m_renderWindow;
    vtkSmartPointer<vtkOrientationMarkerWidget> m_orientationMarker;
    CloudPtr m_cloud;       // "m_pointCloud"
    CloudPtr m_boxCloud;    // "m_boxPointCloud"
    CloudPtr m_clickCloud;  // "m_clickPointCloud"
    std::shared_ptr<pcl::visualization::PCLVisualizer> m_viewer;
    LiveConnection m_live;
    LiveFrameQueue* m_liveFrames = nullptr;
    QList<QMetaObject::Connection> m_sessionConnections;
    SelectConnectType* m_connectDialog = nullptr;
    SaveFileHook m_saveFileHook;
    AutoConnector::PortLister m_serialPorts;
    QProgressBar* m_progressBar = nullptr;
    TableViewToolBar* m_tableToolBar = nullptr;
    AboutDialog* m_about = nullptr;
    DeviceSettingsPanel* m_devicePanel = nullptr;
    NetworkToolLauncher* m_networkTool = nullptr;
    LinkStatusReadout* m_linkStatus = nullptr;
    RecordingReadout* m_recordingReadout = nullptr;
    ColourLegendOverlay* m_legend = nullptr;
    KeyboardShortcuts* m_shortcuts = nullptr;
    QString m_playbackModel;
    lidar::LidarDataPoint_V4 m_lastFrame;
    int m_pointSize = 4;
    bool m_playing = false;
    float m_minAngle = 0.0f;
    float m_maxAngle = 360.0f;
    ScenePoint m_pickedPoints[2];
    bool m_boxActive = false;
    BoxRange m_boxRange;
    QStandardItemModel* m_tableModel = nullptr;
    quintptr m_savedKeyboardLayout = 0;
    QTabBar* m_tabBar = nullptr;
    CsvExport m_csvExport;
    QPointer<QAbstractButton> m_csvButton;  // the export button that started the export
    ExportDialogHook m_exportDialogHook;
    ViewExportTools* m_viewExport = nullptr;
    QTranslator* m_translator = nullptr;
    QTranslator* m_qtTranslator = nullptr;  // Qt's own texts
    int m_tableRows = 30;
    int m_precision = 2;
    uint8_t m_rangingActive = 0;
    int m_overlayCount = 20;  // each overlay reaches count x step
    QLabel* m_motorSpeedLabel = nullptr;
    QLabel* m_deltaXLabel = nullptr;
    QLabel* m_deltaYLabel = nullptr;
    QLabel* m_deltaDistanceLabel = nullptr;
    QLabel* m_azimuthLabel = nullptr;
    QLabel* m_distanceLabel = nullptr;
    QLabel* m_displayBehindLabel = nullptr;

    // The measurement tools of the view.
    std::unique_ptr<OverlayPainter> m_overlays;
    std::unique_ptr<RangingMarks> m_ranging;
    std::unique_ptr<StatusReadouts> m_readouts;
    vtkSmartPointer<vtkWorldPointPicker> m_cursorPicker;
    GridPolarDialog* m_gridPolarDialog = nullptr;
    BoxSelectionDialog* m_boxDialog = nullptr;
    QPoint m_pressPosition{-1, -1};  // where the left button went down in the view
    // The angle range the displayed cloud was drawn with, to find a picked
    // point's frame point again.
    float m_drawnMinAngle = 0.0f;
    float m_drawnMaxAngle = 360.0f;

    // While a frame updates both clouds, their renders are folded into one.
    int m_renderBatchDepth = 0;
    bool m_renderPending = false;
    FrameTimings m_timings;
    std::promise<void> m_wired;
    std::shared_future<void> m_wiredFuture;
};
