#pragma once
// "Show gaps": the angular spans a revolution does not cover, drawn as
// translucent sectors on the ground plane from the lidar out to a radius,
// so that the operator sees where in the circle the loss is.

#include "PclForward.h"
#include "ViewOverlay.h"

#include <QVector>
#include <QPair>
#include <functional>

class GapsOverlay : public ViewOverlay {
public:
    // Sectors reach this far (metres) unless told otherwise.
    static constexpr double kDefaultRadius = 10.0;
    static constexpr const char* kShapeId = "m_gaps";

    using Gaps = QVector<QPair<double, double>>;
    // The gaps of the frame about to be drawn.
    using GapSource = std::function<Gaps()>;

    GapsOverlay(pcl::visualization::PCLVisualizer& viewer, std::function<void()> render);

    bool isOn() const override { return m_on; }
    void setOn(bool on) override;
    void frameShown(const display::FrameView& view) override;
    void viewCleared() override;
    // Where each frame shown takes its gaps from; none: they are given by showGaps.
    void setGapSource(GapSource source) { m_source = std::move(source); }

    // The gaps of the frame now shown, [start, end] in degrees (the
    // lidar's azimuth: 0 along +y, 90 along +x); a span may cross 0.
    void showGaps(const QVector<QPair<double, double>>& gaps);
    void setRadius(double metres) { m_radius = metres; }
    // The sectors drawn now, as given.
    const QVector<QPair<double, double>>& gaps() const { return m_gaps; }

private:
    void redraw();

    pcl::visualization::PCLVisualizer& m_viewer;
    std::function<void()> m_render;
    GapSource m_source;
    QVector<QPair<double, double>> m_gaps;
    double m_radius = kDefaultRadius;
    bool m_on = false;
};
