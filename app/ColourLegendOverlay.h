#pragma once
// The colour legend drawn over the 3D view, in its top right corner, for the
// mode chosen in the colour combo box. It never covers the middle of the
// view, where the lidar and the points closest to it are: a view too small
// to keep it clear of the middle hides it. Mouse events pass through it.

#include "ColourLegend.h"
#include "ViewOverlay.h"

#include <QWidget>

class QComboBox;

class ColourLegendOverlay : public QWidget, public ViewOverlay {
    Q_OBJECT
public:
    static constexpr int kMargin = 10;

    // Lies over `view`; follows the mode and the item texts of `modeBox`.
    ColourLegendOverlay(QWidget* view, QComboBox* modeBox);

    // The operator's switch; on by default.
    void setShown(bool on);
    bool isShown() const { return m_shown; }
    bool isOn() const override { return m_shown; }
    void setOn(bool on) override { setShown(on); }
    const display::ColourLegend& legend() const { return m_legend; }
    QString title() const { return m_title; }
    // Another legend in place of the mode's while the points are coloured by
    // something else (the Change colouring); clearOverride() returns to the mode.
    void setOverride(const display::ColourLegend& legend, const QString& title);
    void clearOverride();

    // The middle of a view that the legend must leave free: half its width
    // and half its height, centred.
    static QRect middleOf(const QSize& view);
    // Where a legend of `size` goes in `view`; an empty rectangle when it
    // would reach into the middle.
    static QRect placement(const QSize& size, const QSize& view);

    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void followMode();
    void reposition();

    QComboBox* m_modeBox;
    display::ColourLegend m_legend;
    QString m_title;
    bool m_shown = true;
    bool m_overridden = false;
    display::ColourLegend m_overrideLegend;
    QString m_overrideTitle;
};
