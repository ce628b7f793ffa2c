#pragma once
// The selection box: whether it is in force, its range, and its points drawn
// white and two sizes larger under "m_boxPointCloud" with every frame. A
// rubber band in the view sets it to the bounding box of the points picked;
// the range dialog edits it (IboxSelection).

#include "IboxSelection.h"
#include "PclForward.h"
#include "ViewOverlay.h"

#include <functional>
#include <memory>
#include <vector>

class BoxOverlay : public ViewOverlay {
public:
    using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;
    // Draws a cloud under an id at a point size (the window's display).
    using DrawCloud = std::function<void(const std::shared_ptr<Cloud>& cloud, const char* id, int pointSize)>;

    BoxOverlay(DrawCloud draw, std::function<int()> pointSize);

    bool isOn() const override { return m_active; }
    void setOn(bool on) override { m_active = on; }
    void frameShown(const display::FrameView& view) override;
    void viewCleared() override { m_active = false; }

    const BoxRange& range() const { return m_range; }
    void setRange(const BoxRange& range) { m_range = range; }
    // The box becomes the bounding box of `indices` of `drawn` (their points
    // are what the box cloud now holds); an empty pick gives a box that
    // holds nothing.
    void takeExtentOf(const Cloud& drawn, const std::vector<int>& indices);

    // The cloud drawn under "m_boxPointCloud": one object for the program.
    std::shared_ptr<Cloud> cloud() const { return m_cloud; }

private:
    DrawCloud m_draw;
    std::function<int()> m_pointSize;
    std::shared_ptr<Cloud> m_cloud;
    bool m_active = false;
    BoxRange m_range;
};
