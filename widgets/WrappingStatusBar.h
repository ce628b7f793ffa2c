#pragma once
// The readouts of a status bar in rows that wrap when the window is too
// narrow for one, so that no readout is squeezed or dropped. On a wide window
// they sit at the right end as permanent widgets do. The bar's temporary
// message (QStatusBar::showMessage) is shown in front of them by a label of
// this panel, which keeps it in view however many rows there are.

#include <QWidget>

class FlowLayout;
class QLabel;
class QStatusBar;

class WrappingStatusBar : public QWidget {
    Q_OBJECT
public:
    // Fills the whole of `bar` as its one permanent widget.
    explicit WrappingStatusBar(QStatusBar* bar);

    void addReadout(QWidget* readout);
    QLabel* messageLabel() const { return m_message; }

private:
    FlowLayout* m_flow;
    QLabel* m_message;
};
