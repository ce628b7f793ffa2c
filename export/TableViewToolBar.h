#pragma once
// The small bar above the point table: "All Data", the number of rows shown
// per frame and the number of decimals. It talks to the main window only
// through ITableViewToolBar.

#include <QWidget>

class ITableViewToolBar;
class QCheckBox;
class QLabel;
class QSpinBox;

class TableViewToolBar : public QWidget {
    Q_OBJECT
public:
    explicit TableViewToolBar(ITableViewToolBar* owner, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void allDataChanged(int state);
    void retranslate();

    ITableViewToolBar* owner;
    QCheckBox* checkBox_all_data;
    QLabel* label;
    QSpinBox* spinBox_rows;
    QLabel* label_2;
    QSpinBox* spinBox_precision;
};
