#pragma once
// Lays its items out left to right and starts a new row where the next item
// would not fit, so that a bar of controls wraps on a narrow window instead of
// squeezing its buttons until their texts are cut. An item that expands
// horizontally (a slider) counts with its minimum width and takes what its
// row leaves over. The widget the layout manages grows to the height of its
// rows: the layouts above it follow without knowing about height-for-width.
// With Qt::AlignRight rows without an expanding item keep to the right.

#include <QLayout>
#include <QList>

class FlowLayout : public QLayout {
    Q_OBJECT
public:
    explicit FlowLayout(QWidget* parent = nullptr, int spacing = 6);
    ~FlowLayout() override;

    // A box of widgets that stay side by side, as one item of the flow.
    static QWidget* group(const QList<QWidget*>& widgets, QWidget* parent, bool expanding = false);

    void addItem(QLayoutItem* item) override;
    int count() const override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

    Qt::Orientations expandingDirections() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSize() const override;  // the widest item, one row
    QSize sizeHint() const override;     // every item in one row
    void setGeometry(const QRect& rect) override;

private:
    // Places the items in `rect` (or only measures, when `place` is false)
    // and returns the height the rows take, margins included.
    int arrange(const QRect& rect, bool place) const;

    QList<QLayoutItem*> m_items;
};
