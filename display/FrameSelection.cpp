#include "FrameSelection.h"

#include "PointRounding.h"

namespace display {

lidar::LidarDataPoint_V4 roundAndSelect(lidar::LidarDataPoint_V4& frame, const BoxRange* box)
{
    lidar::LidarDataPoint_V4 selection;
    for (auto line = frame.points.begin(); line != frame.points.end(); ++line) {
        std::vector<lidar::LidarPoint>* selected = nullptr;
        for (lidar::LidarPoint& p : line.value()) {
            p.x = roundCoordinate(p.x);
            p.y = roundCoordinate(p.y);
            p.z = roundCoordinate(p.z);
            if (box && box->contains(p.x, p.y, p.z)) {
                if (!selected)
                    selected = &selection.points[line.key()];
                selected->push_back(p);
            }
        }
    }
    selection.ambient = frame.ambient;
    selection.motorSpeed = frame.motorSpeed;
    selection.dateTime = frame.dateTime;
    return selection;
}

lidar::LidarDataPoint_V4 selectInBox(const lidar::LidarDataPoint_V4& frame, const BoxRange& box)
{
    lidar::LidarDataPoint_V4 selection;
    for (auto line = frame.points.cbegin(); line != frame.points.cend(); ++line) {
        std::vector<lidar::LidarPoint>* selected = nullptr;
        for (const lidar::LidarPoint& p : line.value()) {
            if (!box.contains(p.x, p.y, p.z))
                continue;
            if (!selected)
                selected = &selection.points[line.key()];
            selected->push_back(p);
        }
    }
    selection.ambient = frame.ambient;
    selection.motorSpeed = frame.motorSpeed;
    selection.dateTime = frame.dateTime;
    return selection;
}

}  // namespace display
