#pragma once
// "Closest per sector": the nearest return in each of S sectors around the
// lidar, worked out for every frame shown. In the ground plane the
// sectors' edges are drawn from the lidar outwards, each sector's label
// (distance and azimuth of its nearest return) stands at that distance in
// the middle of the sector, where the free space of the sector ends, and the
// nearest point of the whole frame is marked. Three actors for all of it,
// known to the view by the ids below, so that Clear removes them like any
// other shape; the next frame puts them back.

#include "PclForward.h"
#include "SectorMinima.h"
#include "ViewOverlay.h"

#include <QString>
#include <functional>
#include <vtkSmartPointer.h>

class FacingLabels;
class vtkActor;
class vtkPoints;

class SectorOverlay : public ViewOverlay {
public:
    static constexpr const char* kEdgesId = "m_sector_edges";
    static constexpr const char* kLabelsId = "m_sector_labels";
    static constexpr const char* kNearestId = "m_sector_nearest";

    SectorOverlay(pcl::visualization::PCLVisualizer& viewer, std::function<void()> render);
    ~SectorOverlay() override;

    bool isOn() const override { return m_on; }
    void setOn(bool on) override;
    void frameShown(const display::FrameView& view) override;
    void viewCleared() override;

    // display::kFewestSectors..kMostSectors; applies from the next frame.
    void setSectors(int sectors);
    int sectors() const { return m_sectors; }
    const display::SectorMinima& minima() const { return m_minima; }
    // Told after every frame the overlay worked out (the sector table).
    void setListener(std::function<void()> listener) { m_listener = std::move(listener); }

    // "1.23 m 45°"; "–" for a sector without a return.
    static QString labelText(const display::SectorNearest& sector);
    const FacingLabels* labels() const;

private:
    void draw();
    void remove();
    void ensureAdded(vtkActor* actor, const char* id);
    void drawEdges(double radius);

    pcl::visualization::PCLVisualizer& m_viewer;
    std::function<void()> m_render;
    std::function<void()> m_listener;
    display::SectorMinima m_minima;
    int m_sectors = display::kDefaultSectors;
    bool m_on = false;
    vtkSmartPointer<vtkActor> m_edges;
    vtkSmartPointer<FacingLabels> m_labels;
    vtkSmartPointer<vtkActor> m_nearest;
    vtkSmartPointer<vtkPoints> m_nearestPoint;
    int m_edgesSectors = 0;  // what the edges were drawn for
    double m_edgesRadius = 0.0;
};
