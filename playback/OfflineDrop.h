#pragma once
// Files dragged onto the 3D view are recordings or captures to play
// offline. These two functions decide whether a drag is worth accepting and
// which file a drop names; the main window's event filter calls them.

#include <QString>

class QMimeData;

namespace offline {

// Accepts a drag that carries at least one URL whose text ends in "txt"
// (a recording), "pcap" or "pcapng" (a capture). Only the first URL counts,
// as only the first is played.
bool isAcceptableDrag(const QMimeData* data);

// The local path of the first dropped URL ("file:///tmp/a%20b.txt" gives
// "/tmp/a b.txt"). Data without a local file URL falls back to its text with
// the "file:///" prefix removed. Empty when nothing usable was dropped.
QString droppedFilePath(const QMimeData* data);

}  // namespace offline
