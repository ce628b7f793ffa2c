#include "BoxSelectionDialog.h"

#include "IboxSelection.h"
#include "ui_RangeSelectDialog.h"

BoxSelectionDialog::BoxSelectionDialog(IboxSelection* owner, QWidget* parent)
    : QDialog(parent), ui(new Ui::RangeSelectDialog), m_owner(owner)
{
    ui->setupUi(this);
    setWindowTitle(tr("Box Selection Settings"));
    connect(ui->btn_ok, &QPushButton::clicked, this, &BoxSelectionDialog::apply);
    connect(ui->btn_cancel, &QPushButton::clicked, this, &QDialog::reject);
}

BoxSelectionDialog::~BoxSelectionDialog()
{
    delete ui;
}

void BoxSelectionDialog::showEvent(QShowEvent* event)
{
    ui->retranslateUi(this);
    setWindowTitle(tr("Box Selection Settings"));
    const BoxRange box = m_owner->getBoxRange();
    ui->spin_min_x->setValue(box.min.x);
    ui->spin_min_y->setValue(box.min.y);
    ui->spin_min_z->setValue(box.min.z);
    ui->spin_max_x->setValue(box.max.x);
    ui->spin_max_y->setValue(box.max.y);
    ui->spin_max_z->setValue(box.max.z);
    QDialog::showEvent(event);
}

void BoxSelectionDialog::apply()
{
    BoxCorner min, max;
    min.x = float(ui->spin_min_x->value());
    min.y = float(ui->spin_min_y->value());
    min.z = float(ui->spin_min_z->value());
    max.x = float(ui->spin_max_x->value());
    max.y = float(ui->spin_max_y->value());
    max.z = float(ui->spin_max_z->value());
    m_owner->setBoxRange(min, max);
    accept();
}
