#pragma once
// The "setting" dialog of the grid and polar overlays: the overlay colour
// (three channel sliders with spin boxes) and the grid and polar steps in
// centimetres. Every change is written into the owner's IGridPolar state and
// redraws the overlays at once; an overlay that is off stays off and takes
// the new values when it is next switched on.

#include <QColor>
#include <QDialog>

class IGridPolar;
class QSlider;

namespace Ui {
class GridPolarDialog;
}

class GridPolarDialog : public QDialog {
    Q_OBJECT
public:
    GridPolarDialog(IGridPolar* owner, QWidget* parent = nullptr);
    ~GridPolarDialog() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void setChannel(int channel, int value);
    void setGridStep(int step);
    void setPolarStep(int step);
    void setBothSteps(int step);

    Ui::GridPolarDialog* ui;
    IGridPolar* m_owner;
    QColor m_colour;  // the colour being edited
};
