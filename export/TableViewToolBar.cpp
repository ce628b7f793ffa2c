#include "TableViewToolBar.h"

#include "ITableViewToolBar.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QSpinBox>
#include <QStyleOption>

TableViewToolBar::TableViewToolBar(ITableViewToolBar* owner, QWidget* parent)
    : QWidget(parent), owner(owner)
{
    setObjectName(QStringLiteral("TableViewToolBar"));
    checkBox_all_data = new QCheckBox(this);
    checkBox_all_data->setObjectName(QStringLiteral("checkBox_all_data"));
    label = new QLabel(this);
    label->setObjectName(QStringLiteral("label"));
    spinBox_rows = new QSpinBox(this);
    spinBox_rows->setObjectName(QStringLiteral("spinBox_rows"));
    spinBox_rows->setRange(1, 1000);
    spinBox_rows->setValue(30);
    label_2 = new QLabel(this);
    label_2->setObjectName(QStringLiteral("label_2"));
    spinBox_precision = new QSpinBox(this);
    spinBox_precision->setObjectName(QStringLiteral("spinBox_precision"));
    spinBox_precision->setRange(0, 5);
    spinBox_precision->setValue(2);
    for (QWidget* w : {static_cast<QWidget*>(label), static_cast<QWidget*>(spinBox_rows),
                       static_cast<QWidget*>(label_2), static_cast<QWidget*>(spinBox_precision)})
        w->setMinimumWidth(100);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label_2->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->addWidget(checkBox_all_data);
    layout->addStretch(1);
    layout->addWidget(label);
    layout->addWidget(spinBox_rows);
    layout->addWidget(label_2);
    layout->addWidget(spinBox_precision);
    retranslate();

    connect(spinBox_rows, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int rows) { this->owner->setTableRows(rows); });
    connect(spinBox_precision, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int precision) { this->owner->setTablePrecision(precision); });
    connect(checkBox_all_data, &QCheckBox::stateChanged, this, &TableViewToolBar::allDataChanged);
}

void TableViewToolBar::allDataChanged(int state)
{
    owner->setTableRows(state == Qt::Checked ? -1 : spinBox_rows->value());
    spinBox_rows->setEnabled(state == Qt::Unchecked);
}

// Draw through the style first so that a style sheet background applies.
void TableViewToolBar::paintEvent(QPaintEvent* event)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    QWidget::paintEvent(event);
}

void TableViewToolBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void TableViewToolBar::retranslate()
{
    checkBox_all_data->setText(tr("All Data"));
    label->setText(tr("Rows:"));
    label_2->setText(tr("Precision:"));
}
