#include "WindowStatusBar.h"

#include "LinkStatusReadout.h"
#include "RecordingReadout.h"
#include "StatusReadouts.h"
#include "WrappingStatusBar.h"

#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QStatusBar>

WindowStatusBar::WindowStatusBar(QMainWindow* window, pcl::visualization::PCLVisualizer& viewer, QWidget* view)
{
    auto* row = new WrappingStatusBar(window->statusBar());
    recording = new RecordingReadout(window);
    row->addReadout(recording);
    link = new LinkStatusReadout(window);
    row->addReadout(link);
    progress = new QProgressBar(window);
    progress->setObjectName(QStringLiteral("progressBar_export"));
    progress->setRange(1, 100);
    // The value is the percentage: over the range 1..100 Qt's own text would be one off.
    progress->setFormat(QStringLiteral("%v%"));
    // No taller than a readout, so that the status bar keeps its height
    // when an export shows it.
    progress->setFixedHeight(std::min(20, QLabel().sizeHint().height()));
    progress->setMaximumWidth(240);
    progress->hide();
    row->addReadout(progress);
    displayBehind = new QLabel(window);
    displayBehind->setObjectName(QStringLiteral("label_display_behind"));
    displayBehind->hide();
    row->addReadout(displayBehind);
    pclLink = new QLabel(window);
    pclLink->setObjectName(QStringLiteral("label_link"));
    pclLink->setTextFormat(Qt::RichText);
    pclLink->setOpenExternalLinks(true);
    row->addReadout(pclLink);

    const QFont font(QStringLiteral("微软雅黑"), -1, 75);
    auto label = [&](const char* name, int width) {
        auto* l = new QLabel(window);
        l->setObjectName(QLatin1String(name));
        l->setFont(font);
        l->setFixedWidth(width);
        row->addReadout(l);
        return l;
    };
    StatusReadouts::Labels labels;
    labels.motorSpeed = label("label_motor_speed", 220);
    labels.deltaX = label("label_delta_x", 175);
    labels.deltaY = label("label_delta_y", 175);
    labels.deltaDistance = label("label_delta_distance", 175);
    labels.azimuth = label("label_azimuth", 175);
    labels.distance = label("label_distance", 175);
    readouts = std::make_unique<StatusReadouts>(labels, viewer, view);
    retranslate();
}

WindowStatusBar::~WindowStatusBar() = default;

void WindowStatusBar::retranslate()
{
    pclLink->setText(QStringLiteral("<a href=\"https://pointclouds.org\">%1</a>").arg(tr("Point Cloud Library")));
    readouts->reset();
}

void WindowStatusBar::showSkipped(quint64 skipped)
{
    displayBehind->setText(tr("display behind: %1 frames skipped").arg(skipped));
    displayBehind->setVisible(skipped > 0);
}
