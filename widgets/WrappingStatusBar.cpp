#include "WrappingStatusBar.h"

#include "FlowLayout.h"

#include <QLabel>
#include <QStatusBar>

WrappingStatusBar::WrappingStatusBar(QStatusBar* bar) : QWidget(bar)
{
    setObjectName(QStringLiteral("widget_status_readouts"));
    m_flow = new FlowLayout(this, 6);
    m_flow->setContentsMargins(0, 0, 0, 0);
    m_flow->setAlignment(Qt::AlignRight);
    m_message = new QLabel(this);
    m_message->setObjectName(QStringLiteral("label_status_message"));
    m_message->hide();
    m_flow->addWidget(m_message);
    // Takes what the first row leaves, so that the readouts keep to the right
    // beside the message; the rows below align right by themselves.
    m_flow->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
    // Filling the bar leaves its own message area empty: the label shows
    // the message instead.
    bar->addPermanentWidget(this, 1);
    connect(bar, &QStatusBar::messageChanged, this, [this](const QString& message) {
        m_message->setText(message);
        m_message->setVisible(!message.isEmpty());
    });
}

void WrappingStatusBar::addReadout(QWidget* readout)
{
    m_flow->addWidget(readout);
}
