#include "ScanSource.h"

#include <algorithm>
#include <vector>

namespace scansource {

double stepOfFrame(const lidar::LidarDataPoint_V4& frame)
{
    std::vector<float> azimuths;
    for (const auto& line : frame.points)
        for (const lidar::LidarPoint& p : line)
            azimuths.push_back(p.azimuth);
    std::sort(azimuths.begin(), azimuths.end());
    // Below a thousandth of a degree two azimuths are one direction.
    constexpr float kSameDirection = 1e-3f;
    std::vector<float> gaps;
    for (size_t i = 1; i < azimuths.size(); ++i)
        if (azimuths[i] - azimuths[i - 1] > kSameDirection)
            gaps.push_back(azimuths[i] - azimuths[i - 1]);
    if (gaps.size() < 2)
        return 0.0;
    std::nth_element(gaps.begin(), gaps.begin() + gaps.size() / 2, gaps.end());
    return gaps[gaps.size() / 2];
}

}  // namespace scansource
