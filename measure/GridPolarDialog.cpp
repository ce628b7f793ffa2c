#include "GridPolarDialog.h"

#include "IGridPolar.h"
#include "ui_GridPolarDialog.h"

namespace {

// The part of the groove left of the handle fades from black to the channel.
QString channelSliderStyle(const char* channelColour)
{
    return QStringLiteral(
               "QSlider::groove:horizontal { height: 12px; }"
               "QSlider::sub-page:horizontal { background: qlineargradient(x1:0, y1:0, x2:1, y2:0,"
               " stop:0 rgba(0, 0, 0, 255), stop:1 %1); }"
               "QSlider::handle:horizontal { background: #ffffff; border: 1px solid rgb(207,207,207);"
               " width: 12px; margin: -5px 0; border-radius: 7px; }")
        .arg(QLatin1String(channelColour));
}

}  // namespace

GridPolarDialog::GridPolarDialog(IGridPolar* owner, QWidget* parent)
    : QDialog(parent), ui(new Ui::GridPolarDialog), m_owner(owner)
{
    ui->setupUi(this);
    setWindowTitle(tr("setting"));
    m_colour.setRgbF(0.8, 0.8, 0.8, 1.0);

    QSlider* sliders[3] = {ui->horizontalSlider_r, ui->horizontalSlider_g, ui->horizontalSlider_b};
    QSpinBox* spins[3] = {ui->spinBox_r, ui->spinBox_g, ui->spinBox_b};
    const char* pure[3] = {"rgba(255, 0, 0, 255)", "rgba(0, 255, 0, 255)", "rgba(0, 0, 255, 255)"};
    for (int channel = 0; channel < 3; ++channel) {
        sliders[channel]->setStyleSheet(channelSliderStyle(pure[channel]));
        connect(sliders[channel], &QSlider::valueChanged, this,
                [this, channel](int value) { setChannel(channel, value); });
        connect(spins[channel], QOverload<int>::of(&QSpinBox::valueChanged), sliders[channel], &QSlider::setValue);
    }
    connect(ui->horizontalSlider_grid_step, &QSlider::valueChanged, this, &GridPolarDialog::setGridStep);
    connect(ui->spinBox_grid_step, QOverload<int>::of(&QSpinBox::valueChanged), ui->horizontalSlider_grid_step,
            &QSlider::setValue);
    connect(ui->horizontalSlider_polar_step, &QSlider::valueChanged, this, &GridPolarDialog::setPolarStep);
    connect(ui->spinBox_polar_step, QOverload<int>::of(&QSpinBox::valueChanged), ui->horizontalSlider_polar_step,
            &QSlider::setValue);
    connect(ui->horizontalSlider_all, &QSlider::valueChanged, this, &GridPolarDialog::setBothSteps);
    connect(ui->spinBox_all, QOverload<int>::of(&QSpinBox::valueChanged), ui->horizontalSlider_all,
            &QSlider::setValue);

    setFixedSize(size());  // the form's own size
}

GridPolarDialog::~GridPolarDialog()
{
    delete ui;
}

void GridPolarDialog::showEvent(QShowEvent* event)
{
    ui->retranslateUi(this);
    setWindowTitle(tr("setting"));
    QDialog::showEvent(event);
}

void GridPolarDialog::setChannel(int channel, int value)
{
    if (channel == 0) {
        m_colour.setRed(value);
        ui->spinBox_r->setValue(value);
    } else if (channel == 1) {
        m_colour.setGreen(value);
        ui->spinBox_g->setValue(value);
    } else {
        m_colour.setBlue(value);
        ui->spinBox_b->setValue(value);
    }
    m_owner->overlayColour = m_colour;
    m_owner->showGrid(m_owner->gridShown);
    m_owner->showPolar(m_owner->polarShown);
}

void GridPolarDialog::setGridStep(int step)
{
    ui->spinBox_grid_step->setValue(step);
    m_owner->gridStep = step;
    m_owner->showGrid(m_owner->gridShown);
}

void GridPolarDialog::setPolarStep(int step)
{
    ui->spinBox_polar_step->setValue(step);
    m_owner->polarStep = step;
    m_owner->showPolar(m_owner->polarShown);
}

void GridPolarDialog::setBothSteps(int step)
{
    ui->horizontalSlider_grid_step->setValue(step);
    ui->horizontalSlider_polar_step->setValue(step);
    ui->spinBox_grid_step->setValue(step);
    ui->spinBox_polar_step->setValue(step);
    ui->spinBox_all->setValue(step);
}
