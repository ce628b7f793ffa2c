#pragma once
// "Closest per sector": the number of sectors and a small table of the
// nearest return in each, following the sector overlay frame by frame.

#include <QDockWidget>

class QLabel;
class QSpinBox;
class QStandardItemModel;
class QTableView;
class SectorOverlay;

class SectorDock : public QDockWidget {
    Q_OBJECT
public:
    explicit SectorDock(SectorOverlay& overlay, QWidget* parent = nullptr);

    QStandardItemModel* table() const { return m_model; }
    // Fills the table from the overlay's last frame.
    void refresh();

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void retranslate();

    SectorOverlay& m_overlay;
    QLabel* m_sectorsLabel;
    QSpinBox* m_sectors;
    QLabel* m_nearest;
    QStandardItemModel* m_model;
    QTableView* m_view;
};
