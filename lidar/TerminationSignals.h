#pragma once
// SIGINT and SIGTERM as events: a program stopped from a terminal (or by a
// test) leaves through its normal path — files written, threads stopped —
// instead of dying where it stands. The handler only writes a byte to a
// pipe; the event loop reads it and runs the program's action.

#include <QObject>
#include <functional>

namespace termination {

// Catches the two signals from now on; false when the handlers cannot be set
// up (the default behaviour then stays). Call early in main().
bool catchSignals();

// Runs `action` in `context`'s event loop for every caught signal, also for
// one caught before this call. Ends with `context`.
void onSignal(QObject* context, std::function<void()> action);

}  // namespace termination
