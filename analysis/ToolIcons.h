#pragma once
// The tools' icons, drawn rather than shipped: a target for the reference,
// bars for the statistics, a divided circle for the sectors, a ring with a
// sector missing for the gaps and a line chart for the stream's health.

#include <QIcon>

namespace toolicons {

QIcon reference();
QIcon statistics();
QIcon sectors();
QIcon gaps();
QIcon chart();

}  // namespace toolicons
