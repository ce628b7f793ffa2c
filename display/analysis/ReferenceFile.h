#pragma once
// A reference kept on disk, so that a fixed installation can be compared
// across days: a small CSV file whose first line names the model and the
// angular step it was taken with, then one line per direction with its
// centre and its range (empty where nothing returned):
//
//   # ScanDeck reference,model=Wren_Plus,angular_step=0.24
//   azimuth,range_m
//   0.000,3.5120
//   0.240,
//
// A reference only means something for the model and the step it was taken
// with: fits() refuses any other, with a message for the operator.

#include "ReferenceSweep.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

namespace display {

class ReferenceFile {
    Q_DECLARE_TR_FUNCTIONS(ReferenceFile)
public:
    static QByteArray text(const ReferenceSweep& reference);
    // Written under a temporary name and renamed when complete and on the
    // disk. False with `error` when it cannot be written.
    static bool save(const ReferenceSweep& reference, const QString& path, QString& error);

    // An invalid reference with `error` when the file cannot be read or is
    // no reference (`name` names it in the message).
    static ReferenceSweep load(const QString& path, QString& error);
    static ReferenceSweep parse(const QByteArray& text, const QString& name, QString& error);

    // Whether the reference fits a lidar of `model` measuring every
    // `angularStep` degrees (sameAngularStep()); otherwise `error` says why.
    static bool fits(const ReferenceSweep& reference, const QString& model, double angularStep, QString& error);
    // load() and fits() together: the reference when both succeed.
    static ReferenceSweep loadFor(const QString& path, const QString& model, double angularStep, QString& error);
};

}  // namespace display
