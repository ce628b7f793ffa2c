#include "ReferenceDock.h"

#include "ReferenceTool.h"
#include "UserMessages.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

#include <cmath>

ReferenceDock::ReferenceDock(ReferenceTool& tool, FrameQuery onScreen, QWidget* parent)
    : QDockWidget(parent),
      m_tool(tool),
      m_onScreen(std::move(onScreen)),
      m_framesLabel(new QLabel),
      m_frames(new QSpinBox),
      m_take(new QPushButton),
      m_state(new QLabel),
      m_change(new QCheckBox),
      m_toleranceLabel(new QLabel),
      m_toleranceCm(new QDoubleSpinBox),
      m_save(new QPushButton),
      m_load(new QPushButton),
      m_readout(new QLabel)
{
    setObjectName(QStringLiteral("dock_reference"));
    m_frames->setObjectName(QStringLiteral("spin_reference_frames"));
    m_frames->setRange(display::ReferenceCollector::kFewestFrames, display::ReferenceCollector::kMostFrames);
    m_frames->setValue(display::ReferenceCollector::kDefaultFrames);
    m_take->setObjectName(QStringLiteral("btn_take_reference"));
    m_state->setObjectName(QStringLiteral("label_reference"));
    m_state->setWordWrap(true);
    m_change->setObjectName(QStringLiteral("check_change_colouring"));
    m_toleranceCm->setObjectName(QStringLiteral("spin_change_tolerance"));
    m_toleranceCm->setRange(0.0, 500.0);
    m_toleranceCm->setDecimals(1);
    m_toleranceCm->setSuffix(QStringLiteral(" cm"));
    m_toleranceCm->setValue(tool.toleranceM() * 100.0);
    m_save->setObjectName(QStringLiteral("btn_save_reference"));
    m_load->setObjectName(QStringLiteral("btn_load_reference"));
    m_readout->setObjectName(QStringLiteral("label_change"));
    m_readout->setWordWrap(true);

    auto* body = new QWidget(this);
    auto* grid = new QGridLayout(body);
    grid->addWidget(m_framesLabel, 0, 0);
    grid->addWidget(m_frames, 0, 1);
    grid->addWidget(m_take, 1, 0, 1, 2);
    grid->addWidget(m_state, 2, 0, 1, 2);
    grid->addWidget(m_change, 3, 0, 1, 2);
    grid->addWidget(m_toleranceLabel, 4, 0);
    grid->addWidget(m_toleranceCm, 4, 1);
    grid->addWidget(m_readout, 5, 0, 1, 2);
    grid->addWidget(m_save, 6, 0);
    grid->addWidget(m_load, 6, 1);
    grid->setRowStretch(7, 1);
    setWidget(body);

    connect(m_take, &QPushButton::clicked, this, &ReferenceDock::takeReference);
    connect(m_save, &QPushButton::clicked, this, &ReferenceDock::saveReference);
    connect(m_load, &QPushButton::clicked, this, &ReferenceDock::loadReference);
    connect(m_change, &QCheckBox::toggled, &m_tool, &ReferenceTool::setOn);
    connect(m_toleranceCm, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this](double cm) { m_tool.setToleranceM(cm / 100.0); });
    connect(&m_tool, &ReferenceTool::stateChanged, this, &ReferenceDock::showState);
    connect(&m_tool, &ReferenceTool::summaryChanged, this,
            [this] { m_readout->setText(changeText(m_tool.summary())); });
    connect(&m_tool, &ReferenceTool::collecting, this, [this](int added, int wanted) {
        m_collecting = added < wanted ? tr("Collecting %1 of %2 frames…").arg(added).arg(wanted) : QString();
        showState();
    });
    retranslate();
}

void ReferenceDock::takeReference()
{
    QString error;
    if (!m_tool.take(m_frames->value(), m_onScreen(), error))
        usermessages::warning(this, tr("Set reference"), error);
}

void ReferenceDock::saveReference()
{
    if (!m_tool.hasReference()) {
        usermessages::warning(this, tr("Save reference"), tr("There is no reference to save."));
        return;
    }
    const QString path = askFile(true, tr("Save reference"));
    QString error;
    if (!path.isEmpty() && !m_tool.save(path, error))
        usermessages::warning(this, tr("Save reference"), error);
}

void ReferenceDock::loadReference()
{
    const QString path = askFile(false, tr("Load reference"));
    QString error;
    if (!path.isEmpty() && !m_tool.load(path, error))
        usermessages::warning(this, tr("Load reference"), error);
}

QString ReferenceDock::askFile(bool save, const QString& caption)
{
    const QString filter = tr("Reference (*.csv)");
    if (m_fileHook)
        return m_fileHook(save, caption, filter);
    return save ? QFileDialog::getSaveFileName(this, caption, QStringLiteral("reference.csv"), filter)
                : QFileDialog::getOpenFileName(this, caption, QString(), filter);
}

QString ReferenceDock::changeText(const display::ChangeSummary& summary)
{
    if (summary.compared == 0)
        return tr("Changed: no point compared");
    QString text = tr("Changed: %1 points (nearer %2, farther %3)")
                       .arg(summary.changed)
                       .arg(summary.nearer)
                       .arg(summary.farther);
    if (summary.hasLargestChange())
        text += tr("; largest %1 m at %2°")
                    .arg(summary.largestChangeM, 0, 'f', 3)
                    .arg(summary.largestChangeAzimuth, 0, 'f', 1);
    return text;
}

void ReferenceDock::showState()
{
    const display::ReferenceSweep* reference = m_tool.reference();
    QString state = m_tool.dropped().isEmpty() ? tr("No reference")
                                               : tr("The reference was dropped: %1").arg(m_tool.dropped());
    if (reference)
        state = tr("Reference of %1, step %2°, %3 of %4 directions with a range")
                    .arg(reference->model())
                    .arg(reference->angularStep(), 0, 'f', 3)
                    .arg(reference->directionsWithRange())
                    .arg(reference->bins().count());
    if (!m_collecting.isEmpty())
        state = m_collecting;
    m_state->setText(state);
    m_change->setEnabled(m_tool.hasReference());
    const QSignalBlocker quiet(m_change);
    m_change->setChecked(m_tool.isOn());
    m_save->setEnabled(m_tool.hasReference());
    if (!m_tool.isOn())
        m_readout->clear();
}

void ReferenceDock::retranslate()
{
    setWindowTitle(tr("Reference and change"));
    m_framesLabel->setText(tr("Median over frames"));
    m_frames->setToolTip(tr("1: the frame on screen; more: the median of each direction over the next frames"));
    m_take->setText(tr("Set reference"));
    m_change->setText(tr("Change colouring"));
    m_toleranceLabel->setText(tr("Tolerance"));
    m_save->setText(tr("Save…"));
    m_load->setText(tr("Load…"));
    showState();
    if (m_tool.isOn())
        m_readout->setText(changeText(m_tool.summary()));
}

void ReferenceDock::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDockWidget::changeEvent(event);
}
