#include "ReferenceTool.h"

#include "PlayerFrames.h"
#include "ReferenceFile.h"

#include <algorithm>

ReferenceTool::ReferenceTool(display::ViewSettings& settings, ScanSourceQuery source, std::function<void()> redraw,
                             QObject* parent)
    : QObject(parent), m_settings(settings), m_source(std::move(source)), m_redraw(std::move(redraw))
{
}

void ReferenceTool::setOn(bool on)
{
    if (on == m_changeOn)
        return;
    m_changeOn = on;
    apply();
}

void ReferenceTool::frameShown(const display::FrameView& view)
{
    if (m_collector && view.drawnAgain) {
        // The same revolution again: not another one for the median.
    } else if (m_collector && m_collector->addFrame(view.frame)) {
        const int wanted = m_collector->framesWanted();
        // The frame being shown is not drawn again: the next one is compared.
        m_inFrame = true;
        setReference(m_collector->reference());  // ends the collecting
        m_inFrame = false;
        emit collecting(wanted, wanted);
    } else if (m_collector) {
        emit collecting(m_collector->framesAdded(), m_collector->framesWanted());
    }
    if (view.settings.changeReference) {
        m_summary = view.change;
        emit summaryChanged();
    }
    if (m_reference && ++m_uncheckedFrames >= kCheckEvery) {
        m_uncheckedFrames = 0;
        m_inFrame = true;
        dropIfForeign();
        m_inFrame = false;
    }
}

// Another recording loaded, another lidar connected: a reference of another
// model or step would compare unrelated directions.
void ReferenceTool::dropIfForeign()
{
    const ScanSource source = m_source();
    QString why;
    if (!source.isKnown() || display::ReferenceFile::fits(*m_reference, source.model, source.angularStep, why))
        return;
    setReference(display::ReferenceSweep());
    m_dropped = why;
    emit stateChanged();
}

void ReferenceTool::viewCleared()
{
    m_summary = display::ChangeSummary();
    emit summaryChanged();
}

bool ReferenceTool::take(int frames, const lidar::LidarDataPoint_V4& onScreen, QString& error)
{
    const ScanSource source = m_source();
    if (!source.isKnown()) {
        error = tr("No lidar is connected and no recording is loaded: there is nothing to take a reference from.");
        return false;
    }
    frames = std::clamp(frames, display::ReferenceCollector::kFewestFrames, display::ReferenceCollector::kMostFrames);
    if (frames == 1) {
        if (onScreen.points.isEmpty()) {
            error = tr("There is no frame on screen to take the reference from.");
            return false;
        }
        setReference(display::referenceFromFrame(source.model, source.angularStep, onScreen));
        return true;
    }
    display::ReferenceCollector collector(source.model, source.angularStep, frames);
    if (!source.recording) {
        // Live: the next frames shown complete it (frameShown).
        m_collector.emplace(std::move(collector));
        emit collecting(0, frames);
        emit stateChanged();
        return true;
    }
    lidar::LidarDataPoint_V4 frame;
    for (int i = source.position; i < source.recording->count() && !collector.isComplete(); ++i)
        if (source.recording->frame(i, frame))
            collector.addFrame(frame);
    if (collector.framesAdded() == 0) {
        error = tr("The frames of the recording cannot be read.");
        return false;
    }
    setReference(collector.reference());
    emit collecting(collector.framesAdded(), frames);
    return true;
}

void ReferenceTool::cancel()
{
    m_collector.reset();
    emit stateChanged();
}

void ReferenceTool::setReference(display::ReferenceSweep reference)
{
    m_collector.reset();
    m_dropped.clear();
    m_uncheckedFrames = 0;
    m_reference = reference.isValid() ? std::make_shared<const display::ReferenceSweep>(std::move(reference))
                                      : nullptr;
    m_summary = display::ChangeSummary();
    // A new reference is taken to be compared with.
    m_changeOn = m_reference != nullptr;
    apply();
}

bool ReferenceTool::save(const QString& path, QString& error) const
{
    if (!m_reference) {
        error = tr("There is no reference to save.");
        return false;
    }
    return display::ReferenceFile::save(*m_reference, path, error);
}

bool ReferenceTool::load(const QString& path, QString& error)
{
    const ScanSource source = m_source();
    if (!source.isKnown()) {
        error = tr("Connect a lidar or load a recording first: a reference is checked against the model it is "
                   "compared with.");
        return false;
    }
    display::ReferenceSweep loaded = display::ReferenceFile::loadFor(path, source.model, source.angularStep, error);
    if (!loaded.isValid())
        return false;
    setReference(std::move(loaded));
    return true;
}

void ReferenceTool::setToleranceM(double metres)
{
    m_toleranceM = std::max(0.0, metres);
    apply();
}

void ReferenceTool::apply()
{
    m_settings.changeReference = m_changeOn ? m_reference : nullptr;
    m_settings.changeToleranceM = m_toleranceM;
    if (!m_settings.changeReference) {
        m_summary = display::ChangeSummary();
        emit summaryChanged();
    }
    emit stateChanged();
    if (!m_inFrame)
        m_redraw();
}
