#pragma once
// Each model's offline parse keeps its unfinished turn, previous azimuth and
// previous packet time from one call to the next, for the whole process. To
// compare two parses, bring that state to the same point before each.

#include <QString>

namespace testing {

// Parses a turn's last packet and the next turn's first, twice: the first
// wrap ends whatever turn was left open, the second leaves the same state
// behind every time.
void settleOfflineParse(const QString& model);

}  // namespace testing
