#include "ColourLegendOverlay.h"

#include <QComboBox>
#include <QEvent>
#include <QPainter>

namespace {

constexpr int kPadding = 8;
constexpr int kRampWidth = 180;
constexpr int kRampHeight = 12;
constexpr int kSwatchSize = 12;
constexpr int kRowGap = 4;

QColor toQColor(const display::Rgb& c)
{
    return QColor(c.r, c.g, c.b);
}

}  // namespace

ColourLegendOverlay::ColourLegendOverlay(QWidget* view, QComboBox* modeBox) : QWidget(view), m_modeBox(modeBox)
{
    setObjectName(QStringLiteral("colour_legend"));
    // Picking, hovering and dragging in the view go on underneath.
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    setFont(small);
    view->installEventFilter(this);
    // Retranslating the combo box renames its items: the title follows.
    connect(modeBox, &QComboBox::currentTextChanged, this, &ColourLegendOverlay::followMode);
    followMode();
}

void ColourLegendOverlay::setShown(bool on)
{
    m_shown = on;
    reposition();
}

void ColourLegendOverlay::setOverride(const display::ColourLegend& legend, const QString& title)
{
    m_overridden = true;
    m_overrideLegend = legend;
    m_overrideTitle = title;
    followMode();
}

void ColourLegendOverlay::clearOverride()
{
    m_overridden = false;
    followMode();
}

void ColourLegendOverlay::followMode()
{
    m_legend = m_overridden ? m_overrideLegend : display::colourLegend(m_modeBox->currentIndex());
    m_title = m_overridden ? m_overrideTitle : m_modeBox->currentText();
    reposition();
    update();
}

QRect ColourLegendOverlay::middleOf(const QSize& view)
{
    return QRect(view.width() / 4, view.height() / 4, view.width() / 2, view.height() / 2);
}

QRect ColourLegendOverlay::placement(const QSize& size, const QSize& view)
{
    const QRect corner(view.width() - kMargin - size.width(), kMargin, size.width(), size.height());
    if (corner.left() < 0 || corner.bottom() >= view.height() || corner.intersects(middleOf(view)))
        return QRect();
    return corner;
}

QSize ColourLegendOverlay::sizeHint() const
{
    const QFontMetrics fm(font());
    int width = fm.horizontalAdvance(m_title);
    int height = fm.height();
    if (!m_legend.ramp.isEmpty()) {
        width = qMax(width, kRampWidth);
        height += kRowGap + kRampHeight + 2 + fm.height();
    }
    for (const display::LegendSwatch& swatch : m_legend.swatches) {
        width = qMax(width, kSwatchSize + 6 + fm.horizontalAdvance(swatch.label));
        height += kRowGap + qMax(kSwatchSize, fm.height());
    }
    return QSize(width + 2 * kPadding, height + 2 * kPadding);
}

void ColourLegendOverlay::reposition()
{
    const QRect where = placement(sizeHint(), parentWidget()->size());
    const bool visible = m_shown && !m_legend.isEmpty() && !where.isEmpty();
    if (visible) {
        setGeometry(where);
        raise();
    }
    setVisible(visible);
}

bool ColourLegendOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        reposition();
    return QWidget::eventFilter(watched, event);
}

void ColourLegendOverlay::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        followMode();
    QWidget::changeEvent(event);
}

void ColourLegendOverlay::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(20, 24, 30, 190));
    painter.drawRoundedRect(rect(), 6, 6);

    const QFontMetrics fm(font());
    const QColor textColour(235, 238, 242);
    int y = kPadding;
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(textColour);
    painter.drawText(QRect(kPadding, y, width() - 2 * kPadding, fm.height()), Qt::AlignLeft | Qt::AlignVCenter,
                     m_title);
    painter.setFont(font());
    y += fm.height();

    if (!m_legend.ramp.isEmpty()) {
        y += kRowGap;
        const int count = m_legend.ramp.size();
        const int rampWidth = width() - 2 * kPadding;
        // One column per pixel, coloured like the intensity under it.
        for (int x = 0; x < rampWidth; ++x) {
            const int value = x * (count - 1) / qMax(1, rampWidth - 1);
            painter.fillRect(kPadding + x, y, 1, kRampHeight, toQColor(m_legend.ramp.at(value)));
        }
        y += kRampHeight + 2;
        for (int tick : m_legend.rampTicks) {
            const int x = kPadding + tick * (rampWidth - 1) / qMax(1, count - 1);
            const QString text = QString::number(tick);
            const int textWidth = fm.horizontalAdvance(text);
            const int left = qBound(kPadding, x - textWidth / 2, width() - kPadding - textWidth);
            painter.fillRect(x, y - 2, 1, 3, textColour);
            painter.drawText(QRect(left, y, textWidth, fm.height()), Qt::AlignCenter, text);
        }
        y += fm.height();
    }

    for (const display::LegendSwatch& swatch : m_legend.swatches) {
        y += kRowGap;
        const int rowHeight = qMax(kSwatchSize, fm.height());
        painter.fillRect(kPadding, y + (rowHeight - kSwatchSize) / 2, kSwatchSize, kSwatchSize, toQColor(swatch.colour));
        painter.drawText(QRect(kPadding + kSwatchSize + 6, y, width(), rowHeight), Qt::AlignLeft | Qt::AlignVCenter,
                         swatch.label);
        y += rowHeight;
    }
}
