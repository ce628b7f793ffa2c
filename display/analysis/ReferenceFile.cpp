#include "ReferenceFile.h"

#include "AtomicFileWrite.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <cmath>

namespace display {
namespace {

const QByteArray kMarker = QByteArrayLiteral("# ScanDeck reference");
const QByteArray kColumns = QByteArrayLiteral("azimuth,range_m");
// A reference of the finest step is well under a megabyte.
constexpr qint64 kLargestFile = 16 * 1024 * 1024;
// A line's azimuth may lie this share of a direction's width from its
// centre (a file written with fewer decimals, or by hand).
constexpr double kAzimuthSlack = 0.25;

bool toNumber(const QByteArray& text, double& value)
{
    bool ok = false;
    value = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(value);
}

// "model=Tern,angular_step=0.36" after the marker.
void readHeader(const QByteArray& line, QString& model, QByteArray& step)
{
    for (const QByteArray& field : line.mid(kMarker.size()).split(',')) {
        const int equals = field.indexOf('=');
        if (equals < 0)
            continue;
        const QByteArray key = field.left(equals).trimmed(), value = field.mid(equals + 1).trimmed();
        if (key == "model")
            model = QString::fromUtf8(value);
        else if (key == "angular_step")
            step = value;
    }
}

}  // namespace

QByteArray ReferenceFile::text(const ReferenceSweep& reference)
{
    QByteArray out = kMarker + ",model=" + reference.model().toUtf8()
        + ",angular_step=" + QByteArray::number(reference.angularStep(), 'g', 12) + '\n' + kColumns + '\n';
    for (int bin = 0; bin < reference.bins().count(); ++bin) {
        out += QByteArray::number(reference.bins().centre(bin), 'f', 3) + ',';
        if (reference.hasRange(bin))
            out += QByteArray::number(reference.rangeMm(bin) / 1000.0, 'f', 4);
        out += '\n';
    }
    return out;
}

bool ReferenceFile::save(const ReferenceSweep& reference, const QString& path, QString& error)
{
    lidar::AtomicFileWrite file(path);
    QString reason;
    if (!file.open(&reason)) {
        error = tr("Cannot write %1: %2").arg(path, reason);
        return false;
    }
    const QByteArray bytes = text(reference);
    if (file.file().write(bytes) != bytes.size()) {
        error = tr("Cannot write %1: %2").arg(path, file.file().errorString());
        file.discard();
        return false;
    }
    if (!file.commit(&reason)) {
        error = tr("Cannot write %1: %2").arg(path, reason);
        return false;
    }
    return true;
}

ReferenceSweep ReferenceFile::load(const QString& path, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = tr("Cannot read %1: %2").arg(path, file.errorString());
        return {};
    }
    if (file.size() > kLargestFile) {
        error = tr("%1 is not a reference file: it is far too large for one.").arg(path);
        return {};
    }
    return parse(file.readAll(), path, error);
}

ReferenceSweep ReferenceFile::parse(const QByteArray& text, const QString& name, QString& error)
{
    QList<QByteArray> lines = text.split('\n');
    for (QByteArray& line : lines)
        if (line.endsWith('\r'))
            line.chop(1);
    if (lines.isEmpty() || !lines.first().startsWith(kMarker)) {
        error = tr("%1 is not a reference file: its first line does not begin with \"%2\".")
                    .arg(name, QString::fromLatin1(kMarker));
        return {};
    }
    QString model;
    QByteArray stepText;
    readHeader(lines.first(), model, stepText);
    double step = 0.0;
    if (model.isEmpty()) {
        error = tr("%1 is not a reference file: its first line names no model.").arg(name);
        return {};
    }
    if (!toNumber(stepText, step) || step <= 0.0 || !AngularBins(step).isValid()) {
        error = tr("%1 is not a reference file: its first line gives no angular step.").arg(name);
        return {};
    }
    if (lines.size() < 2 || lines.at(1).trimmed() != kColumns) {
        error = tr("%1 is damaged at line 2: \"%2\" should name the columns.").arg(name, QString::fromLatin1(kColumns));
        return {};
    }
    ReferenceSweep reference(model, step);
    const AngularBins& bins = reference.bins();
    QSet<int> seen;
    for (int i = 2; i < lines.size(); ++i) {
        const QByteArray& line = lines.at(i);
        if (line.trimmed().isEmpty())
            continue;
        const auto damaged = [&](const QString& why) {
            error = tr("%1 is damaged at line %2: %3").arg(name).arg(i + 1).arg(why);
            return ReferenceSweep();
        };
        const QList<QByteArray> fields = line.split(',');
        if (fields.size() != 2)
            return damaged(tr("a line holds an azimuth and a range, separated by a comma."));
        double azimuth = 0.0, range = 0.0;
        if (!toNumber(fields.at(0), azimuth) || azimuth < 0.0 || azimuth >= 360.0)
            return damaged(tr("\"%1\" is no azimuth from 0 up to 360 degrees.").arg(QString::fromUtf8(fields.at(0))));
        const int bin = bins.binOf(azimuth);
        double off = std::abs(azimuth - bins.centre(bin));
        off = std::min(off, 360.0 - off);
        if (off > kAzimuthSlack * bins.width())
            return damaged(tr("azimuth %1 is not one of the directions of a %2° step.")
                               .arg(QString::fromUtf8(fields.at(0).trimmed()), QString::fromUtf8(stepText)));
        if (seen.contains(bin))
            return damaged(tr("azimuth %1 is given twice.").arg(QString::fromUtf8(fields.at(0).trimmed())));
        seen.insert(bin);
        if (fields.at(1).trimmed().isEmpty())
            continue;  // nothing returned there
        if (!toNumber(fields.at(1), range) || range <= 0.0)
            return damaged(tr("\"%1\" is no range in metres.").arg(QString::fromUtf8(fields.at(1))));
        // The file's resolution is a tenth of a millimetre.
        reference.setRangeMm(bin, std::round(range * 10000.0) / 10.0);
    }
    return reference;
}

bool ReferenceFile::fits(const ReferenceSweep& reference, const QString& model, double angularStep, QString& error)
{
    if (reference.model() != model) {
        error = tr("This reference was taken with a %1, not with a %2: a reference only fits the model it was "
                   "taken with.")
                    .arg(reference.model(), model);
        return false;
    }
    if (!sameAngularStep(reference.angularStep(), angularStep)) {
        error = tr("This reference was taken at an angular step of %1°, but the lidar measures every %2°: its "
                   "directions do not match.")
                    .arg(reference.angularStep(), 0, 'f', 4)
                    .arg(angularStep, 0, 'f', 4);
        return false;
    }
    return true;
}

ReferenceSweep ReferenceFile::loadFor(const QString& path, const QString& model, double angularStep, QString& error)
{
    ReferenceSweep reference = load(path, error);
    if (!reference.isValid())
        return {};
    if (!fits(reference, model, angularStep, error))
        return {};
    return reference;
}

}  // namespace display
