#include "GPSTest.h"

#include "GpsTimingCharts.h"
#include "ui_GPSTest.h"

#include <QIcon>

namespace {

// A bound that is not a number counts as 0.
uint64_t boundFromText(const QString& text)
{
    bool ok = false;
    const qulonglong value = text.toULongLong(&ok, 10);
    return ok ? value : 0;
}

}  // namespace

GPSTest::GPSTest(QWidget* parent) : QWidget(parent), ui(new Ui::GPSTest)
{
    ui->setupUi(this);
    setWindowIcon(QIcon(QStringLiteral(":/Draibaire/Resources/images/gps_test.png")));
    m_charts = new GpsTimingCharts(this);
    ui->verticalLayout->addWidget(m_charts, 1);
    // The fields keep the form's width; the charts take what room there is.
    resize(width(), height() + 300);
    connect(ui->lineEdit_minimum, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_minimum = boundFromText(text); });
    connect(ui->lineEdit_maxmum, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_maximum = boundFromText(text); });
    connect(ui->pushButton_pause, &QPushButton::clicked, this, &GPSTest::togglePause);
}

GPSTest::~GPSTest() = default;

uint64_t GPSTest::intervalMs(uint64_t current, uint64_t previous)
{
    const uint64_t difference = current >= previous ? current - previous : previous - current;
    return difference / 1000000u;
}

void GPSTest::SetData(lidar::GPSTime time)
{
    if (!m_paused)
        m_charts->add(time.currentNs, time.previousNs);
    const uint64_t interval = intervalMs(time.currentNs, time.previousNs);
    if (m_minimum <= interval && interval <= m_maximum)
        return;
    if (!isVisible() || m_paused)
        return;

    QLineEdit* const current[] = {ui->lineEdit_yeas,   ui->lineEdit_month,   ui->lineEdit_day,
                                  ui->lineEdit_hour,   ui->lineEdit_minute,  ui->lineEdit_seconde,
                                  ui->lineEdit_millisecond, ui->lineEdit_microsecond};
    QLineEdit* const previous[] = {ui->lineEdit_yeas_2,   ui->lineEdit_month_2,  ui->lineEdit_day_2,
                                   ui->lineEdit_hour_2,   ui->lineEdit_minute_2, ui->lineEdit_seconde_2,
                                   ui->lineEdit_millisecond_2, ui->lineEdit_microsecond_2};
    const int32_t fields[] = {time.year, time.month,  time.day,         time.hour,
                              time.minute, time.second, time.millisecond, time.microsecond};
    for (int i = 0; i < 8; ++i) {
        current[i]->setText(QString::number(fields[i]));
        previous[i]->setText(QString::number(time.previous[i]));
    }
    ui->lineEdit_timestamp->setText(QString::number(time.currentNs / 1000000u));
    ui->lineEdit_timestamp_2->setText(QString::number(time.previousNs / 1000000u));
}

void GPSTest::togglePause()
{
    m_paused = !m_paused;
    ui->pushButton_pause->setIcon(QIcon(m_paused ? QStringLiteral(":/images/images/connect.png")
                                                 : QStringLiteral(":/images/images/disconnect.png")));
}

void GPSTest::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        ui->retranslateUi(this);
    QWidget::changeEvent(event);
}
