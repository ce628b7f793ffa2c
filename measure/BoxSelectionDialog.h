#pragma once
// "Box Selection Settings": the six bounds of the selection box in metres.
// Each time it is shown it reads the owner's box; Ok stores the edited box
// (no check that a minimum stays below its maximum: such a box selects
// nothing), Cancel leaves it.

#include <QDialog>

class IboxSelection;

namespace Ui {
class RangeSelectDialog;
}

class BoxSelectionDialog : public QDialog {
    Q_OBJECT
public:
    BoxSelectionDialog(IboxSelection* owner, QWidget* parent = nullptr);
    ~BoxSelectionDialog() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void apply();

    Ui::RangeSelectDialog* ui;
    IboxSelection* m_owner;
};
