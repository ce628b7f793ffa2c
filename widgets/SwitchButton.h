#pragma once
// A rounded on/off switch with a sliding knob and "ON"/"OFF" on its track.
// A left click flips it and emits toggled(); setChecked() from code moves the
// knob too but emits nothing. The knob slides one pixel per timer tick, the
// tick chosen from the width so that a whole travel takes about 0.3 s.

#include <QColor>
#include <QString>
#include <QTimer>
#include <QWidget>

class SwitchButton : public QWidget {
    Q_OBJECT
public:
    // Every switch starts on, its knob sliding to the right at once.
    explicit SwitchButton(QWidget* parent = nullptr);

    bool isChecked() const { return m_checked; }
    // Moves the knob to the new state; no signal.
    void setChecked(bool checked);

    // The animation, for whoever needs to know where the knob is.
    double knobX() const { return m_knobX; }
    int animationInterval() const { return m_interval; }
    bool isAnimating() const { return m_timer.isActive(); }

    QSize sizeHint() const override { return QSize(64, 26); }

signals:
    void toggled(bool checked);

private slots:
    void onTimeout();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool m_checked = false;
    QColor m_offBackground{60, 60, 60, 255};
    QColor m_onBackground{Qt::green};
    QColor m_disabledKnob{60, 60, 60, 255};
    QColor m_knob{Qt::white};
    double m_knobX = -1.0;
    double m_knobY = 0.0;
    qint16 m_height = 0;
    qint16 m_width = 0;
    QTimer m_timer;
    QString m_onText = QStringLiteral("ON");
    QString m_offText = QStringLiteral("OFF");
    int m_interval = 0;
};
