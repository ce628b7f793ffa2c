#include "RangingMarks.h"

#include <pcl/console/print.h>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>

#include <QVector>
#include <cmath>

namespace {

const std::string kClickCloudId = "m_clickPointCloud";
const std::string kBoxCloudId = "m_boxPointCloud";
const std::string kLineId = "m_ranging_line";
const std::string kLabelId = "m_ranging_text";

struct PendingPoint {
    int index;
    pcl::PointXYZRGB point;
};

QVector<PendingPoint>& pendingPoints()
{
    static QVector<PendingPoint> pending;
    return pending;
}

pcl::PointXYZRGB redCopy(const pcl::PointXYZRGB& p)
{
    pcl::PointXYZRGB red(uint8_t(255), uint8_t(0), uint8_t(0));
    red.x = p.x;
    red.y = p.y;
    red.z = p.z;
    return red;
}

void clearCloud(pcl::PointCloud<pcl::PointXYZRGB>& cloud)
{
    cloud.points.clear();
    cloud.width = 0;
    cloud.height = 1;
}

void appendPoint(pcl::PointCloud<pcl::PointXYZRGB>& cloud, const pcl::PointXYZRGB& p)
{
    cloud.points.push_back(p);
    cloud.width = uint32_t(cloud.points.size());
    cloud.height = 1;
}

}  // namespace

RangingMarks::RangingMarks(pcl::visualization::PCLVisualizer& viewer, std::shared_ptr<Cloud> clickCloud,
                           std::shared_ptr<Cloud> boxCloud)
    : m_viewer(viewer), m_clickCloud(std::move(clickCloud)), m_boxCloud(std::move(boxCloud))
{
}

void RangingMarks::markSingle(const pcl::PointXYZRGB& point, int pointSize)
{
    clearCloud(*m_clickCloud);
    clearCloud(*m_boxCloud);
    removeMarks();
    appendPoint(*m_clickCloud, redCopy(point));
    const pcl::visualization::PointCloudColorHandlerRGBField<pcl::PointXYZRGB> colours(m_clickCloud);
    m_viewer.addPointCloud<pcl::PointXYZRGB>(m_clickCloud, colours, kClickCloudId, 0);
    m_viewer.setPointCloudRenderingProperties(pcl::visualization::PCL_VISUALIZER_POINT_SIZE, pointSize + 2,
                                              kClickCloudId);
}

RangingMarks::Step RangingMarks::addRangingPoint(int index, const pcl::PointXYZRGB& point, int pointSize,
                                                 float* distance)
{
    QVector<PendingPoint>& pending = pendingPoints();
    pending.append({index, point});
    if (pending.size() != 2) {
        clearCloud(*m_clickCloud);
        clearCloud(*m_boxCloud);
        m_viewer.removeShape(kLineId);
        m_viewer.removeText3D(kLabelId);
        m_viewer.removePointCloud(kClickCloudId);
        m_viewer.removePointCloud(kBoxCloudId);
        return Step::FirstOfPair;
    }

    const pcl::PointXYZRGB a = pending[0].point, b = pending[1].point;
    // The first click left its point in the click cloud. The second is shown
    // only while the first is still in the view: the add after a successful
    // update is refused as a duplicate, the update itself does the drawing.
    appendPoint(*m_clickCloud, redCopy(b));
    const pcl::visualization::PointCloudColorHandlerRGBField<pcl::PointXYZRGB> colours(m_clickCloud);
    if (m_viewer.updatePointCloud<pcl::PointXYZRGB>(m_clickCloud, colours, kClickCloudId)) {
        // The refusal is expected: its "id already exists" warning is kept off the console.
        const pcl::console::VERBOSITY_LEVEL level = pcl::console::getVerbosityLevel();
        pcl::console::setVerbosityLevel(pcl::console::L_ERROR);
        m_viewer.addPointCloud<pcl::PointXYZRGB>(m_clickCloud, colours, kClickCloudId, 0);
        pcl::console::setVerbosityLevel(level);
    }
    m_viewer.setPointCloudRenderingProperties(pcl::visualization::PCL_VISUALIZER_POINT_SIZE, pointSize + 3,
                                              kClickCloudId);

    replaceLine(a, b, false);
    const float d = float(std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) + (a.z - b.z) * (a.z - b.z)));
    const double midpoint[3] = {(a.x + b.x) / 2.0, (a.y + b.y) / 2.0, (a.z + b.z) / 2.0};
    replaceLabel(d, midpoint);
    *distance = d;
    m_lastPair = display::RangingBearing::components(a.x, a.y, b.x, b.y);

    clearCloud(*m_clickCloud);
    pending.clear();
    return Step::PairComplete;
}

bool RangingMarks::preview(const double cursor[3])
{
    if (m_clickCloud->points.empty())
        return false;
    const pcl::PointXYZRGB& a = m_clickCloud->points.front();
    pcl::PointXYZRGB c;
    c.x = float(cursor[0]);
    c.y = float(cursor[1]);
    c.z = float(cursor[2]);
    replaceLine(a, c, true);
    const double dx = a.x - cursor[0], dy = a.y - cursor[1], dz = a.z - cursor[2];
    const double midpoint[3] = {0.5 * (a.x + cursor[0]), 0.5 * (a.y + cursor[1]), 0.5 * (a.z + cursor[2])};
    replaceLabel(std::sqrt(dx * dx + dy * dy + dz * dz), midpoint);
    return true;
}

void RangingMarks::removeMarks()
{
    m_viewer.removePointCloud(kClickCloudId);
    m_viewer.removeShape(kLineId);
    for (const char* id : {"m_ranging_text", "point0", "point1"})
        m_viewer.removeText3D(id);
}

QString RangingMarks::lengthLabel(double metres)
{
    return QString::number(metres, 'f', kPrecision) + QLatin1Char('M');
}

int RangingMarks::pendingCount()
{
    return pendingPoints().size();
}

void RangingMarks::replaceLine(const pcl::PointXYZRGB& a, const pcl::PointXYZRGB& b, bool red)
{
    m_viewer.removeShape(kLineId);
    if (red) {
        m_viewer.addLine(a, b, 1.0, 0.0, 0.0, kLineId, 0);
        m_viewer.setShapeRenderingProperties(pcl::visualization::PCL_VISUALIZER_REPRESENTATION,
                                             pcl::visualization::PCL_VISUALIZER_REPRESENTATION_WIREFRAME, kLineId);
    } else {
        m_viewer.addLine(a, b, kLineId, 0);
    }
}

void RangingMarks::replaceLabel(double length, const double midpoint[3])
{
    m_viewer.removeText3D(kLabelId);
    // The colour is given on the 0..255 scale; the view clamps it to pure red.
    const pcl::PointXYZ at{float(midpoint[0]), float(midpoint[1]), float(midpoint[2])};
    m_viewer.addText3D(lengthLabel(length).toStdString(), at, length * 0.06, 255.0, 0.0, 0.0, kLabelId, 0);
}
