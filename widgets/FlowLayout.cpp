#include "FlowLayout.h"

#include <QHBoxLayout>
#include <QWidget>
#include <algorithm>

namespace {

// Hidden widgets take no room; spacers count although Qt calls them empty.
bool skipped(const QLayoutItem* item)
{
    return item->isEmpty() && !const_cast<QLayoutItem*>(item)->spacerItem();
}

bool expandsSideways(const QLayoutItem* item)
{
    return item->expandingDirections() & Qt::Horizontal;
}

// The width an item asks for in a row: its wish, or its least for an item
// that will be given the rest of the row anyway.
int wantedWidth(const QLayoutItem* item)
{
    return expandsSideways(item) ? item->minimumSize().width() : item->sizeHint().width();
}

}  // namespace

FlowLayout::FlowLayout(QWidget* parent, int spacing) : QLayout(parent)
{
    setSpacing(spacing);
}

FlowLayout::~FlowLayout()
{
    while (QLayoutItem* item = takeAt(0))
        delete item;
}

QWidget* FlowLayout::group(const QList<QWidget*>& widgets, QWidget* parent, bool expanding)
{
    auto* box = new QWidget(parent);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets)
        row->addWidget(widget);
    box->setSizePolicy(expanding ? QSizePolicy::Expanding : QSizePolicy::Preferred, QSizePolicy::Preferred);
    return box;
}

void FlowLayout::addItem(QLayoutItem* item)
{
    m_items.append(item);
}

int FlowLayout::count() const
{
    return m_items.size();
}

QLayoutItem* FlowLayout::itemAt(int index) const
{
    return m_items.value(index);
}

QLayoutItem* FlowLayout::takeAt(int index)
{
    return index >= 0 && index < m_items.size() ? m_items.takeAt(index) : nullptr;
}

Qt::Orientations FlowLayout::expandingDirections() const
{
    for (const QLayoutItem* item : m_items)
        if (expandsSideways(item))
            return Qt::Horizontal;
    return {};
}

int FlowLayout::heightForWidth(int width) const
{
    return arrange(QRect(0, 0, width, 0), false);
}

QSize FlowLayout::minimumSize() const
{
    QSize size;
    for (const QLayoutItem* item : m_items)
        if (!skipped(item))
            size = size.expandedTo(QSize(wantedWidth(item), item->sizeHint().height()));
    const QMargins m = contentsMargins();
    return size + QSize(m.left() + m.right(), m.top() + m.bottom());
}

QSize FlowLayout::sizeHint() const
{
    int width = 0, height = 0, shown = 0;
    for (const QLayoutItem* item : m_items) {
        if (skipped(item))
            continue;
        width += item->sizeHint().width() + (shown++ ? spacing() : 0);
        height = std::max(height, item->sizeHint().height());
    }
    const QMargins m = contentsMargins();
    return QSize(width + m.left() + m.right(), height + m.top() + m.bottom());
}

void FlowLayout::setGeometry(const QRect& rect)
{
    QLayout::setGeometry(rect);
    const int height = arrange(rect, true);
    // The rows decide the height: ask the layouts above for it.
    QWidget* owner = parentWidget();
    if (owner && owner->layout() == this && owner->minimumHeight() != height)
        owner->setMinimumHeight(height);
}

int FlowLayout::arrange(const QRect& rect, bool place) const
{
    const QRect area = rect.marginsRemoved(contentsMargins());
    const QMargins m = contentsMargins();
    QList<QLayoutItem*> row;
    int top = area.top(), rowWidth = 0;

    // Lays one row out at `top`, giving the space left to its expanding items.
    const auto finishRow = [&](const QList<QLayoutItem*>& items) {
        int height = 0, expanding = 0;
        for (const QLayoutItem* item : items) {
            height = std::max(height, item->sizeHint().height());
            expanding += expandsSideways(item);
        }
        if (place) {
            int spare = std::max(0, area.width() - rowWidth), x = area.left();
            if (expanding == 0 && (alignment() & Qt::AlignRight))
                x += spare;
            for (QLayoutItem* item : items) {
                int width = wantedWidth(item);
                if (expandsSideways(item)) {
                    const int share = spare / expanding--;
                    width += share;
                    spare -= share;
                }
                width = std::min(width, area.width());
                const int itemHeight = std::min(height, std::max(item->sizeHint().height(), item->minimumSize().height()));
                item->setGeometry(QRect(x, top + (height - itemHeight) / 2, width, itemHeight));
                x += width + spacing();
            }
        }
        return height;
    };

    for (QLayoutItem* item : m_items) {
        if (skipped(item))
            continue;
        const int width = wantedWidth(item);
        const int widthWith = rowWidth + (row.isEmpty() ? 0 : spacing()) + width;
        if (!row.isEmpty() && widthWith > area.width()) {
            top += finishRow(row) + spacing();
            row.clear();
            rowWidth = width;
        } else {
            rowWidth = widthWith;
        }
        row.append(item);
    }
    if (!row.isEmpty())
        top += finishRow(row);
    return top - area.top() + m.top() + m.bottom();
}
