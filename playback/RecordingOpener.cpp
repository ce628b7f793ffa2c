#include "RecordingOpener.h"

#include "RecordingParse.h"

#include <QProgressDialog>

namespace {

bool g_opening = false;
constexpr int kShowAfterMs = 400;

}  // namespace

bool RecordingOpener::isOpening()
{
    return g_opening;
}

RecordingOpener::Result RecordingOpener::open(QWidget* parent, const QString& path)
{
    Result result;
    if (g_opening) {
        result.busy = true;
        return result;
    }
    g_opening = true;

    QProgressDialog dialog(tr("Loading offline data..."), tr("Cancel"), 0, 1000, parent);
    dialog.setWindowTitle(tr("Open offline data"));
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setMinimumDuration(kShowAfterMs);
    dialog.setAutoReset(false);
    dialog.setAutoClose(false);
    dialog.setValue(0);
    const lidar::ParsedRecording parsed = lidar::parseRecording(path, [&dialog](int permille) {
        // Once shown, the modal dialog lets events through itself (Cancel
        // among them); before that the window paints but takes no clicks.
        dialog.setValue(permille);
        if (!dialog.isVisible())
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        return !dialog.wasCanceled();
    });
    g_opening = false;

    result.model = parsed.model;
    result.frames = parsed.frames;
    result.cancelled = parsed.cancelled;
    return result;
}
