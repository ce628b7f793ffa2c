#pragma once
// Tells a damaged recording from a file that is no recording at all. Every
// recording begins with its element count and then, whole, the class name of
// a registered model; a file that does not begin so is something else, however
// its later bytes look.

#include <QString>

namespace cli {

// True when the file begins like a recording, and for a file that cannot be
// read at all (that is reported as such, not as a foreign file).
bool beginsLikeRecording(const QString& path);

}  // namespace cli
