#pragma once
// The player's "Export bag": a range of the frames of the file being played
// (all of them unless told otherwise) written to a ROS bag exactly as
// 'scandeck-cli convert --format bag' writes them, one frame at a time, with
// a progress dialog whose Cancel leaves no bag behind.

#include <QDialog>
#include <QString>
#include <functional>

class PlayerFrames;
class QLineEdit;
class QSpinBox;

struct BagExportRequest {
    int first = 1;  // 1-based, inclusive
    int last = 1;
    QString path;
};

// Asks for the range and the file, proposing every frame and
// "./<model>_<date time>.bag".
class BagExportDialog : public QDialog {
    Q_OBJECT
public:
    BagExportDialog(const QString& model, int frames, QWidget* parent = nullptr);
    BagExportRequest request() const;

private:
    QSpinBox* first_;
    QSpinBox* last_;
    QLineEdit* path_;
};

// What the bag is made of: the played file and how to read its geometry.
struct BagSource {
    QString model;
    QString path;          // recording or capture
    bool capture = false;
    quint16 port = 2368;   // a capture's data port
};

// Writes the bag; false with `error` when it cannot be written (nothing is
// left behind then) or `cancelled` when the user stopped it.
bool exportBag(QWidget* parent, PlayerFrames& frames, const BagSource& source, const BagExportRequest& request,
               QString& error, bool& cancelled);
