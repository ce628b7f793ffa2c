#pragma once
// Two-point ranging as an overlay: whether range finding is on, the points
// of the pair being picked, and their marks in the view (RangingMarks: the
// red points, the line, its length).

#include "PclForward.h"
#include "RangingMarks.h"
#include "ViewOverlay.h"

#include <memory>

class RangingOverlay : public ViewOverlay {
public:
    using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;

    // A picked point of a pair: position and colour.
    struct ScenePoint {
        float x = 0.0f, y = 0.0f, z = 0.0f, w = 1.0f;
        uint8_t r = 0, g = 0, b = 0, a = 255;
    };

    RangingOverlay(pcl::visualization::PCLVisualizer& viewer, std::shared_ptr<Cloud> boxCloud);

    bool isOn() const override { return m_active; }
    // Each (re)start forgets the pair shown with the last frame; a first
    // point still waiting for its partner is kept (RangingMarks).
    void setOn(bool on) override;

    // A click on a drawn point while ranging: true once it completes a pair
    // (`distance` in metres), false for the first point of a pair, which is
    // then marked alone.
    bool addPoint(int index, const pcl::PointXYZRGB& point, int pointSize, float* distance);
    void markSingle(const pcl::PointXYZRGB& point, int pointSize) { m_marks.markSingle(point, pointSize); }
    bool preview(const double cursor[3]) { return m_marks.preview(cursor); }
    void removeMarks() { m_marks.removeMarks(); }
    const display::RangingComponents& lastPair() const { return m_marks.lastPair(); }

    const Cloud& clickCloud() const { return *m_clickCloud; }
    const ScenePoint& picked(int i) const { return m_picked[i]; }

private:
    std::shared_ptr<Cloud> m_clickCloud;  // "m_clickPointCloud"
    RangingMarks m_marks;
    bool m_active = false;
    ScenePoint m_picked[2];
};
