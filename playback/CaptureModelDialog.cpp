#include "CaptureModelDialog.h"

#include "CaptureFile.h"
#include "IniSettings.h"
#include "LIdarFactory.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {
const QString kModelKey = QStringLiteral("capture model");
const QString kPortKey = QStringLiteral("capture data port");
}  // namespace

CaptureModelDialog::CaptureModelDialog(const QString& model, quint16 port, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("CaptureModelDialog"));
    setWindowTitle(tr("Open a capture"));
    setMinimumWidth(420);
    comboBox_model = new QComboBox(this);
    comboBox_model->setObjectName(QStringLiteral("comboBox_model"));
    comboBox_model->addItems(LIdarFactory::GetInstance()->ModelNames());
    spinBox_port = new QSpinBox(this);
    spinBox_port->setObjectName(QStringLiteral("spinBox_port"));
    spinBox_port->setRange(1, 65535);

    comboBox_model->setCurrentText(model);
    spinBox_port->setValue(port);

    auto* text = new QLabel(tr("A capture does not name its lidar. Which model sent this one, and to which port?"),
                            this);
    text->setWordWrap(true);
    auto* form = new QFormLayout;
    form->addRow(tr("Model:"), comboBox_model);
    form->addRow(tr("Data port:"), spinBox_port);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

QString CaptureModelDialog::model() const
{
    return comboBox_model->currentText();
}

quint16 CaptureModelDialog::port() const
{
    return quint16(spinBox_port->value());
}

void CaptureModelDialog::lastChoice(QString& model, quint16& port)
{
    const IniSettings settings;
    const QStringList models = LIdarFactory::GetInstance()->ModelNames();
    model = settings.value(QString(), kModelKey);
    if (!models.contains(model))
        model = models.value(0);
    const uint stored = settings.value(QString(), kPortKey).toUInt();
    port = stored >= 1 && stored <= 65535 ? quint16(stored) : capture::kDefaultDataPort;
}

void CaptureModelDialog::rememberChoice(const QString& model, quint16 port)
{
    IniSettings settings;
    settings.setValue(QString(), kModelKey, model);
    settings.setValue(QString(), kPortKey, QString::number(port));
}
