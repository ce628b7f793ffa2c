#pragma once
// A model's scan geometry (ModelGeometry.h) taken from the first whole data
// packet of a file, read ahead from its start; whatever else reads the file
// is not disturbed, and nothing is decoded. Invalid when no packet gives it.

#include "ModelGeometry.h"

#include <QString>

namespace lidar {

// A recording names its model.
ScanGeometry recordingScanGeometry(const QString& path);
// A capture does not: the UDP payloads to `port` are looked at as packets of
// `model`, from each header in them (a datagram may carry several).
ScanGeometry captureScanGeometry(const QString& path, const QString& model, quint16 port);

}  // namespace lidar
