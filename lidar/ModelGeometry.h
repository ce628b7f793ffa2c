#pragma once
// What a laser scan of a model needs to know about its measurements: the
// angle between neighbouring measurements and the distances a packet can
// carry. Both follow from the packet geometry and distance width of the
// model's descriptor:
//
// - the Tern family spreads a packet's 15 degrees over the points it makes:
//   fixed-size packets make 41 of their 42 words where the 41st is dropped
//   whenever the 40th holds a distance, length-field packets one per word,
//   and their word count follows from the length field;
// - the Wren family puts 16 groups from a start to an end azimuth, both
//   carried by every packet.
//
// Distances are millimetres in 15 or 16 bits; 0 is no echo, so the nearest
// measurable distance is 1 mm.

#include <QByteArray>
#include <QString>

namespace lidar {

struct ScanGeometry {
    double angularStep = 0.0;  // degrees between neighbouring measurements
    double rangeMin = 0.0;     // metres
    double rangeMax = 0.0;     // metres

    bool isValid() const { return angularStep > 0.0 && rangeMax > rangeMin; }
};

struct ModelDescriptor;

// The geometry of `model` read from `bytes`, which begin with one whole data
// packet of that model (anything may follow it). Invalid for an unknown
// model or bytes that do not begin with such a packet.
ScanGeometry scanGeometry(const QString& model, const QByteArray& bytes);
ScanGeometry scanGeometry(const ModelDescriptor& model, const QByteArray& bytes);

}  // namespace lidar
