#include "StatusReadouts.h"

#include "ReadoutTexts.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QWidget>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <cmath>
#include <limits>

namespace {

// The frame's texts sit 250 pixels below the top of the view, the ambient
// value left of the date-time.
constexpr int kViewTextDrop = 250;
constexpr int kAmbientX = 10;
constexpr int kDateTimeX = 170;
constexpr int kViewTextSize = 14;

void setText(QLabel* label, const QString& text)
{
    if (label->text() != text)
        label->setText(text);
}

}  // namespace

StatusReadouts::StatusReadouts(const Labels& labels, pcl::visualization::PCLVisualizer& viewer, QWidget* view)
    : m_labels(labels), m_viewer(viewer), m_view(view)
{
    for (QLabel* label : {m_labels.motorSpeed, m_labels.deltaX, m_labels.deltaY, m_labels.deltaDistance,
                          m_labels.azimuth, m_labels.distance})
        m_baseWidths.push_back(label->minimumWidth());
}

void StatusReadouts::fitWidths()
{
    // The longest texts each readout shows in practice: a fast motor, a
    // selection 40 m across, a cursor far out. A label keeps its width unless
    // its text would not fit in it, so the readouts never shift as values change.
    const QPair<QLabel*, QString> longest[] = {
        {m_labels.motorSpeed, ReadoutTexts::motorSpeed(1200)},  {m_labels.deltaX, ReadoutTexts::deltaX(-40.0)},
        {m_labels.deltaY, ReadoutTexts::deltaY(-40.0)},         {m_labels.deltaDistance, ReadoutTexts::deltaDistance(40000.0)},
        {m_labels.azimuth, ReadoutTexts::azimuth(-359.999)},    {m_labels.distance, ReadoutTexts::distance(100.001)}};
    for (size_t i = 0; i < m_baseWidths.size(); ++i) {
        QLabel* label = longest[i].first;
        label->ensurePolished();  // the style sheet's padding and font count
        // Measured as the label measures itself; reset() sets the real text next.
        label->setText(longest[i].second);
        label->setFixedWidth(std::max(m_baseWidths[i], label->sizeHint().width()));
    }
}

void StatusReadouts::reset()
{
    fitWidths();
    setText(m_labels.motorSpeed, ReadoutTexts::motorSpeed(-1));
    setText(m_labels.deltaX, ReadoutTexts::noDeltaX());
    setText(m_labels.deltaY, ReadoutTexts::noDeltaY());
    setText(m_labels.deltaDistance, ReadoutTexts::noDeltaDistance());
    if (m_readingStarted) {
        setText(m_labels.azimuth, ReadoutTexts::noAzimuth());
        setText(m_labels.distance, ReadoutTexts::noDistance());
    } else {
        setText(m_labels.azimuth, QCoreApplication::translate("ReadoutTexts", "azimuth:"));
        setText(m_labels.distance, QCoreApplication::translate("ReadoutTexts", "distance"));
    }
}

void StatusReadouts::showCursor(const double world[3])
{
    m_readingStarted = true;
    const double x = world[0], y = world[1], z = world[2];
    setText(m_labels.azimuth, ReadoutTexts::azimuth(ReadoutTexts::cursorAzimuth(x, y)));
    setText(m_labels.distance, ReadoutTexts::distance(std::sqrt(x * x + y * y + z * z)));
}

void StatusReadouts::clearCursor()
{
    m_readingStarted = true;
    setText(m_labels.azimuth, ReadoutTexts::noAzimuth());
    setText(m_labels.distance, ReadoutTexts::noDistance());
}

void StatusReadouts::showFrame(const lidar::LidarDataPoint_V4& frame)
{
    m_readingStarted = true;
    setText(m_labels.motorSpeed, ReadoutTexts::motorSpeed(frame.motorSpeed));
    showViewText(frame.ambient == -1 ? QString() : ReadoutTexts::ambient(frame.ambient), kAmbientX, "Ambient");
    showViewText(frame.dateTime, kDateTimeX, "DateTime");
}

void StatusReadouts::showSelection(const display::SelectionReadout& selection, bool boxActive)
{
    m_readingStarted = true;
    if (!boxActive || !selection.any) {
        clearSelection();
        return;
    }
    setText(m_labels.deltaX, ReadoutTexts::deltaX(selection.deltaX));
    setText(m_labels.deltaY, ReadoutTexts::deltaY(selection.deltaY));
    setText(m_labels.deltaDistance, ReadoutTexts::deltaDistance(selection.deltaDistance));
}

void StatusReadouts::clearSelection()
{
    setText(m_labels.deltaX, ReadoutTexts::noDeltaX());
    setText(m_labels.deltaY, ReadoutTexts::noDeltaY());
    setText(m_labels.deltaDistance, ReadoutTexts::noDeltaDistance());
}

void StatusReadouts::showViewText(const QString& text, int x, const std::string& id)
{
    if (text.isEmpty()) {
        if (m_viewer.contains(id))
            m_viewer.removeShape(id);
        return;
    }
    const int y = int(std::round(m_view->height() * m_view->devicePixelRatioF())) - kViewTextDrop;
    const QString shown = text + QLatin1Char('@') + QString::number(y);
    QString& last = m_viewTexts[id];
    if (last == shown && m_viewer.contains(id))
        return;
    last = shown;
    if (!m_viewer.updateText(text.toStdString(), x, y, kViewTextSize, 1.0, 1.0, 1.0, id)) {
        m_viewer.addText(text.toStdString(), x, y, kViewTextSize, 1.0, 1.0, 1.0, id);
        // VTK's own font has no Chinese: "Ambient" would be drawn as its number alone.
        const std::string font = viewTextFontFile();
        const auto shape = m_viewer.getShapeActorMap()->find(id);
        if (!font.empty() && shape != m_viewer.getShapeActorMap()->end())
            if (auto* actor = vtkTextActor::SafeDownCast(shape->second)) {
                actor->GetTextProperty()->SetFontFamily(VTK_FONT_FILE);
                actor->GetTextProperty()->SetFontFile(font.c_str());
            }
    }
}

std::string StatusReadouts::viewTextFontFile()
{
    static const std::string found = [] {
        for (const char* path : {"/usr/share/fonts/truetype/wqy/wqy-microhei.ttc",
                                 "/usr/share/fonts/truetype/wqy/wqy-zenhei.ttc"})
            if (QFileInfo::exists(QString::fromLatin1(path)))
                return std::string(path);
        return std::string();
    }();
    return found;
}
