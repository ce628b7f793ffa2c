#pragma once
// The analysis tools' icons, drawn rather than shipped: a target for the
// reference, bars for the statistics, a divided circle for the sectors.

#include <QIcon>

namespace toolicons {

QIcon reference();
QIcon statistics();
QIcon sectors();

}  // namespace toolicons
