#pragma once
// What the player says about a file it cannot play: "Unable to parse this
// file", and for a recording cut short (the program or the machine stopped
// while it was being made) how to make its complete packets readable again.

#include <QString>

namespace offline {

QString refusalText(const QString& path);

}  // namespace offline
