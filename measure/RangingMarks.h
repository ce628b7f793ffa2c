#pragma once
// What picking and ranging draw in the 3D view: the picked points in red
// (the click cloud), and for a ranging pair the line between them with its
// length as a 3D label. Between the two clicks of a pair a red line with its
// live length follows the cursor.
//
// The points waiting for their partner are kept in one list for the whole
// program: switching ranging off and on again does not forget a first
// point, the next ranging click pairs with it.

#include "PclForward.h"
#include "RangingBearing.h"

#include <QString>
#include <memory>
#include <optional>

class RangingMarks {
public:
    using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;

    // Distances shown in the view and the status bar carry this many decimals.
    static constexpr int kPrecision = 2;

    RangingMarks(pcl::visualization::PCLVisualizer& viewer, std::shared_ptr<Cloud> clickCloud,
                 std::shared_ptr<Cloud> boxCloud);

    // Marks one point alone: clears both clouds and every ranging mark, then
    // shows the point in red, drawn at pointSize + 2.
    void markSingle(const pcl::PointXYZRGB& point, int pointSize);

    enum class Step { FirstOfPair, PairComplete };
    // Adds a ranging point. The first of a pair wipes the old marks and the
    // box cloud; the caller then marks it as a single pick. The second draws
    // the line and the label and gives the distance in metres.
    Step addRangingPoint(int index, const pcl::PointXYZRGB& point, int pointSize, float* distance);

    // Bearing and offsets of the pair completed last, from its first point
    // to its second.
    const display::RangingComponents& lastPair() const { return m_lastPair; }

    // The rubber band from the first point of a pair to `cursor` (world
    // coordinates). False when no first point is marked.
    bool preview(const double cursor[3]);

    // Removes the click cloud, the ranging line and label and the point
    // labels from the view (the pending points stay).
    void removeMarks();

    // "1.25M"
    static QString lengthLabel(double metres);
    // Points waiting for a partner, program-wide (0 or 1 between clicks).
    static int pendingCount();

private:
    void replaceLine(const pcl::PointXYZRGB& a, const pcl::PointXYZRGB& b, bool red);
    void replaceLabel(double length, const double midpoint[3]);

    pcl::visualization::PCLVisualizer& m_viewer;
    std::shared_ptr<Cloud> m_clickCloud;
    std::shared_ptr<Cloud> m_boxCloud;
    display::RangingComponents m_lastPair;
};
