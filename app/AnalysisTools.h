#pragma once
// The analysis tools beside the measuring tools: one button in the bar
// above the view whose menu holds them (Set reference, Range statistics,
// Closest per sector), their
// docks, and what they need from the window: the model and angular step of
// the frames on screen (live or from the player), the frames shown, the
// view's settings (where the Change colouring's reference goes) and the
// colour legend (which shows the Change legend while it colours).

#include "FramePipeline.h"
#include "ScanSource.h"

#include <QObject>
#include <functional>

class ColourLegendOverlay;
class FrameDisplay;
class QAction;
class QToolButton;
class ReferenceDock;
class ReferenceTool;
class ScanDeck;
class SectorDock;
class SectorOverlay;
class StatisticsDock;
class StatisticsRun;

class AnalysisTools : public QObject {
    Q_OBJECT
public:
    // Made by the window, which owns it as a child.
    AnalysisTools(ScanDeck& window, FrameDisplay& display, display::ViewSettings& settings,
                  ColourLegendOverlay* legend);
    ~AnalysisTools() override;

    // The save and open dialogs of the docks (saving or not, caption,
    // filter); empty restores QFileDialog.
    void setFileHook(std::function<QString(bool save, const QString& caption, const QString& filter)> hook);
    ScanSource source() const;

    ReferenceTool& reference() const { return *m_reference; }
    StatisticsRun& statistics() const { return *m_statistics; }
    SectorOverlay& sectors() const { return *m_sectors; }
    ReferenceDock* referenceDock() const { return m_referenceDock; }
    StatisticsDock* statisticsDock() const { return m_statisticsDock; }
    SectorDock* sectorDock() const { return m_sectorDock; }

private:
    void addButtons();
    void retranslate();
    void followReference();
    void redraw();
    bool eventFilter(QObject* watched, QEvent* event) override;

    ScanDeck& m_window;
    FrameDisplay& m_display;
    display::ViewSettings& m_settings;
    ColourLegendOverlay* m_legend;
    ReferenceTool* m_reference;
    StatisticsRun* m_statistics;
    std::unique_ptr<SectorOverlay> m_sectors;
    ReferenceDock* m_referenceDock;
    StatisticsDock* m_statisticsDock;
    SectorDock* m_sectorDock;
    QToolButton* m_button = nullptr;
    QAction* m_referenceAction = nullptr;
    QAction* m_statisticsAction = nullptr;
    QAction* m_sectorsAction = nullptr;
    mutable QString m_geometryFile;  // the recording whose step m_fileStep is
    mutable double m_fileStep = 0.0;
};
