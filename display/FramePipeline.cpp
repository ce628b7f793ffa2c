#include "FramePipeline.h"

#include "FrameSelection.h"
#include "PointTableRow.h"

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

namespace display {
namespace {

using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;

// Fills `cloud` with the frame's drawn points; `rows` (when given) gets the
// texts of the first `rowLimit` of them (-1: all).
CloudFillResult fill(const lidar::LidarDataPoint_V4& frame, Cloud& cloud, const ViewSettings& settings,
                     const Rgb* fixedColour, int rowLimit, QVector<QStringList>* rows,
                     const std::vector<ChangeClass>* changes = nullptr)
{
    CloudFillOptions options;
    options.minAngle = settings.minAngle;
    options.maxAngle = settings.maxAngle;
    options.colourMode = settings.colourMode;
    options.useFixedColour = fixedColour != nullptr;
    if (fixedColour)
        options.fixedColour = *fixedColour;
    options.changeClasses = changes;
    options.rowLimit = rowLimit;
    options.trackDistances = fixedColour != nullptr;
    RowSink sink;
    if (rows)
        sink = [&](int id, const lidar::LidarPoint& p) { rows->append(pointtable::rowTexts(id, p, settings.precision)); };
    return fillCloud(frame, cloud, options, sink);
}

// The box's part: its points, its cloud, its rows when it has points.
void fillBox(FrameView& view, const ViewSettings& settings)
{
    view.boxActive = settings.boxActive;
    view.settings = settings;
    view.boxCloud = std::make_shared<Cloud>();
    QVector<QStringList> rows;
    const bool listsBox = !view.boxFrame.points.isEmpty();
    const CloudFillResult filled =
        fill(view.boxFrame, *view.boxCloud, settings, &kBoxColour, -1, listsBox ? &rows : nullptr);
    if (listsBox) {
        view.tableChanges = true;
        view.tableRows = std::move(rows);
    }
    const CloudExtent extent = cloudExtent(*view.boxCloud);
    view.selection.any = extent.min[0] <= extent.max[0];
    if (view.selection.any) {
        view.selection.deltaX = extent.max[0] - extent.min[0];
        view.selection.deltaY = extent.max[1] - extent.min[1];
        view.selection.deltaDistance = double(filled.maxDistance) - double(filled.minDistance);
    }
}

}  // namespace

FrameView frameView(lidar::LidarDataPoint_V4 frame, const ViewSettings& settings)
{
    FrameView view;
    view.boxFrame = roundAndSelect(frame, settings.boxActive ? &settings.box : nullptr);
    view.frame = std::move(frame);
    view.cloud = std::make_shared<Cloud>();
    // The box's rows take the table's place: the frame's are only made
    // when the box has no point to list.
    const bool listsFrame = !view.frame.points.isEmpty() && view.boxFrame.points.isEmpty();
    ChangeComparison change;
    if (settings.changeReference) {
        ChangeOptions options;
        options.toleranceM = settings.changeToleranceM;
        options.minAngle = settings.minAngle;
        options.maxAngle = settings.maxAngle;
        change = compareWithReference(*settings.changeReference, view.frame, options);
        view.change = change.summary;
    }
    fill(view.frame, *view.cloud, settings, nullptr, settings.tableRows, listsFrame ? &view.tableRows : nullptr,
         settings.changeReference ? &change.classes : nullptr);
    view.tableChanges = listsFrame;
    fillBox(view, settings);
    return view;
}

FrameView boxView(const lidar::LidarDataPoint_V4& roundedFrame, const ViewSettings& settings)
{
    FrameView view;
    if (settings.boxActive)
        view.boxFrame = selectInBox(roundedFrame, settings.box);
    fillBox(view, settings);
    return view;
}

}  // namespace display
