#include "SectorDock.h"

#include "SectorOverlay.h"

#include <QEvent>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTableView>

SectorDock::SectorDock(SectorOverlay& overlay, QWidget* parent)
    : QDockWidget(parent),
      m_overlay(overlay),
      m_sectorsLabel(new QLabel),
      m_sectors(new QSpinBox),
      m_nearest(new QLabel),
      m_model(new QStandardItemModel(this)),
      m_view(new QTableView)
{
    setObjectName(QStringLiteral("dock_sectors"));
    m_sectors->setObjectName(QStringLiteral("spin_sectors"));
    m_sectors->setRange(display::kFewestSectors, display::kMostSectors);
    m_sectors->setValue(overlay.sectors());
    m_nearest->setObjectName(QStringLiteral("label_nearest"));
    m_view->setObjectName(QStringLiteral("table_sectors"));
    m_view->setModel(m_model);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->verticalHeader()->hide();
    m_view->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);

    auto* body = new QWidget(this);
    auto* grid = new QGridLayout(body);
    grid->addWidget(m_sectorsLabel, 0, 0);
    grid->addWidget(m_sectors, 0, 1);
    grid->addWidget(m_nearest, 1, 0, 1, 2);
    grid->addWidget(m_view, 2, 0, 1, 2);
    setWidget(body);

    connect(m_sectors, QOverload<int>::of(&QSpinBox::valueChanged), this, [this](int sectors) {
        m_overlay.setSectors(sectors);
    });
    // A hidden table is not kept up to date: it costs every frame.
    m_overlay.setListener([this] {
        if (isVisible())
            refresh();
    });
    retranslate();
}

void SectorDock::refresh()
{
    const display::SectorMinima& minima = m_overlay.minima();
    m_model->setRowCount(minima.sectors.size());
    for (int row = 0; row < minima.sectors.size(); ++row) {
        const display::SectorNearest& s = minima.sectors[row];
        const QStringList texts{
            QStringLiteral("%1–%2").arg(s.fromAzimuth, 0, 'f', 0).arg(s.toAzimuth, 0, 'f', 0),
            s.found ? QString::number(s.distanceM, 'f', 3) : QStringLiteral("–"),
            s.found ? QString::number(s.azimuth, 'f', 2) : QStringLiteral("–")};
        for (int column = 0; column < texts.size(); ++column) {
            QStandardItem* item = m_model->item(row, column);
            if (!item)
                m_model->setItem(row, column, new QStandardItem(texts[column]));
            else if (item->text() != texts[column])
                item->setText(texts[column]);
        }
    }
    const display::SectorNearest* nearest = minima.nearest();
    m_nearest->setText(nearest ? tr("Nearest: %1 m at %2°").arg(nearest->distanceM, 0, 'f', 3).arg(nearest->azimuth, 0, 'f', 2)
                               : tr("Nearest: no return"));
}

void SectorDock::retranslate()
{
    setWindowTitle(tr("Closest per sector"));
    m_sectorsLabel->setText(tr("Sectors"));
    m_model->setHorizontalHeaderLabels({tr("Sector (°)"), tr("Distance (m)"), tr("Azimuth (°)")});
    refresh();
}

void SectorDock::showEvent(QShowEvent* event)
{
    refresh();
    QDockWidget::showEvent(event);
}

void SectorDock::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDockWidget::changeEvent(event);
}
