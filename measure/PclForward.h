#pragma once
// Names of PCL's cloud and viewer for headers that only pass them around,
// so that they need not pull in PCL's own (large) headers.

namespace pcl {
struct PointXYZRGB;
template <typename PointT>
class PointCloud;
namespace visualization {
class PCLVisualizer;
}
}  // namespace pcl
