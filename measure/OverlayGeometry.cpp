#include "OverlayGeometry.h"

#include <cstdint>

namespace overlay {

namespace {

// A step of 0 or less would never reach the extent.
bool usable(int count, int step)
{
    return count > 0 && step > 0;
}

Label label(const QString& idPrefix, int64_t offsetCm, int64_t signedCm, bool onXAxis, int step)
{
    Label l;
    l.id = idPrefix + QString::number(offsetCm);
    l.text = QString::number(signedCm) + QStringLiteral("CM");
    const float metres = float(double(signedCm) * 0.01);
    l.position[0] = onXAxis ? metres : 0.0f;
    l.position[1] = onXAxis ? 0.0f : metres;
    l.position[2] = 0.0f;
    l.scale = step * 0.001;
    return l;
}

}  // namespace

std::vector<Line> gridLines(int count, int step)
{
    std::vector<Line> lines;
    if (!usable(count, step))
        return lines;
    const int64_t extent = int64_t(count) * step;
    const float reach = float(double(extent) * 0.01);
    auto addPair = [&](int64_t v) {
        const float f = float(v) * 0.01f;
        const QString offset = QString::asprintf("%f", double(f));
        lines.push_back({QStringLiteral("GridLineY") + offset, {f, -reach, 0.0f}, {f, reach, 0.0f}});
        lines.push_back({QStringLiteral("GridLineX") + offset, {-reach, f, 0.0f}, {reach, f, 0.0f}});
    };
    for (int64_t v = -extent; v <= 0; v += step)
        addPair(v);
    for (int64_t v = step; v <= extent; v += step)
        addPair(v);
    return lines;
}

std::vector<Label> gridLabels(int count, int step)
{
    std::vector<Label> labels;
    if (!usable(count, step))
        return labels;
    const int64_t extent = int64_t(count) * step;
    for (int64_t i = step; i < extent; i += step) {
        labels.push_back(label(QStringLiteral("right_grid"), i, i, false, step));
        labels.push_back(label(QStringLiteral("left_grid"), i, -i, false, step));
    }
    return labels;
}

std::vector<double> polarRadii(int count, int step)
{
    std::vector<double> radii;
    if (!usable(count, step))
        return radii;
    const int64_t extent = int64_t(count) * step;
    for (int64_t r = extent % step; r < extent + step; r += step)
        radii.push_back(double(r) * 0.01);
    return radii;
}

std::vector<Label> polarLabels(int count, int step)
{
    std::vector<Label> labels;
    if (!usable(count, step))
        return labels;
    const int64_t extent = int64_t(count) * step;
    for (int64_t u = step; u < extent + step; u += step) {
        labels.push_back(label(QStringLiteral("right_polar"), u, u, true, step));
        labels.push_back(label(QStringLiteral("left_polar"), u, -u, true, step));
    }
    return labels;
}

}  // namespace overlay
