#pragma once
// The six readouts of the main window's status bar (motor speed, the box's
// Δx, Δy and Δdistance, azimuth and distance under the cursor) and the
// frame's ambient value and date-time drawn as text in the 3D view. A label
// is only touched when its text changes, so that a mouse move that changes
// nothing costs nothing.

#include "LidarRecords.h"
#include "FramePipeline.h"
#include "PclForward.h"

#include <QString>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class QLabel;
class QWidget;

class StatusReadouts {
public:
    struct Labels {
        QLabel* motorSpeed = nullptr;
        QLabel* deltaX = nullptr;
        QLabel* deltaY = nullptr;
        QLabel* deltaDistance = nullptr;
        QLabel* azimuth = nullptr;
        QLabel* distance = nullptr;
    };

    StatusReadouts(const Labels& labels, pcl::visualization::PCLVisualizer& viewer, QWidget* view);

    // Every label to its text for "no value" (also after a language switch),
    // and wide enough for its longest text in the current language. Until
    // the first readout the labels show the texts the window starts with
    // ("azimuth:", "distance"); from then on the readouts' own ("Azimuth:").
    void reset();

    // Azimuth and distance of a world point under the cursor, or none.
    void showCursor(const double world[3]);
    void clearCursor();

    // Motor speed, ambient value and date-time of the frame just shown.
    void showFrame(const lidar::LidarDataPoint_V4& frame);

    // The extent of the drawn selection while the box is in force; no value
    // without a box or for a box holding nothing.
    void showSelection(const display::SelectionReadout& selection, bool boxActive);
    void clearSelection();

    // The font file the view's texts are drawn with: one with Chinese glyphs.
    static std::string viewTextFontFile();

private:
    void fitWidths();
    // Draws or replaces a text of the view; an empty text removes it.
    void showViewText(const QString& text, int x, const std::string& id);

    Labels m_labels;
    pcl::visualization::PCLVisualizer& m_viewer;
    QWidget* m_view;
    std::map<std::string, QString> m_viewTexts;
    std::vector<int> m_baseWidths;  // as the window made them, in label order
    bool m_readingStarted = false;
};
