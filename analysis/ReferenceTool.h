#pragma once
// The reference and the Change colouring: takes a reference from the frame
// on screen or as the per-direction median over the next frames (live: as
// they are shown; in the player: read from the recording without playing
// them), keeps it on disk and back, and while the Change colouring is on
// puts it into the view's settings, so that the display pipeline colours
// each point by its change and sums the changes up. As an overlay it is
// "on" while the Change colouring is.

#include "ChangeComparison.h"
#include "FramePipeline.h"
#include "ReferenceSweep.h"
#include "ScanSource.h"
#include "ViewOverlay.h"

#include <QObject>
#include <memory>
#include <optional>

class ReferenceTool : public QObject, public ViewOverlay {
    Q_OBJECT
public:
    // `settings` are the window's view settings, which every frame is shown
    // with; `redraw` shows the frame on screen again with them.
    ReferenceTool(display::ViewSettings& settings, ScanSourceQuery source, std::function<void()> redraw,
                  QObject* parent = nullptr);

    bool isOn() const override { return m_changeOn; }
    void setOn(bool on) override;
    void frameShown(const display::FrameView& view) override;
    void viewCleared() override;

    // One frame: the frame on screen. More: the median over that many
    // frames, the next ones shown live, or read from the recording from the
    // one on screen. False with `error` when there is nothing to take from.
    bool take(int frames, const lidar::LidarDataPoint_V4& onScreen, QString& error);
    bool isCollecting() const { return m_collector.has_value(); }
    void cancel();

    void setReference(display::ReferenceSweep reference);
    bool hasReference() const { return m_reference != nullptr; }
    const display::ReferenceSweep* reference() const { return m_reference.get(); }
    // Saved as ReferenceFile writes it; loading refuses a reference of
    // another model or step than the one now shown (`error` says why).
    bool save(const QString& path, QString& error) const;
    bool load(const QString& path, QString& error);

    void setToleranceM(double metres);
    double toleranceM() const { return m_toleranceM; }
    // The change of the last frame shown with the colouring on.
    const display::ChangeSummary& summary() const { return m_summary; }
    // Why the reference was dropped (another model or step came on
    // screen); empty while it stands.
    const QString& dropped() const { return m_dropped; }

    // A reference is checked against the frames' source this often, in frames shown.
    static constexpr int kCheckEvery = 25;

signals:
    // A reference was set, loaded or dropped, or the colouring switched.
    void stateChanged();
    void collecting(int added, int wanted);
    void summaryChanged();

private:
    void apply();
    void dropIfForeign();

    display::ViewSettings& m_settings;
    ScanSourceQuery m_source;
    std::function<void()> m_redraw;
    std::shared_ptr<const display::ReferenceSweep> m_reference;
    std::optional<display::ReferenceCollector> m_collector;
    display::ChangeSummary m_summary;
    double m_toleranceM = display::ChangeOptions::kDefaultToleranceM;
    bool m_changeOn = false;
    bool m_inFrame = false;
    int m_uncheckedFrames = 0;
    QString m_dropped;
};
