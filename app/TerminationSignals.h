#pragma once
// SIGINT and SIGTERM close the window instead of killing the process, so a
// viewer stopped from a terminal (or by a test) leaves through its normal
// close path: the demo's simulator and the session's thread are stopped
// before the process ends.

class QWidget;

// Catches the two signals from now on; one that arrives before a window is
// attached waits for it. Call first thing in main(); false when the
// handlers cannot be set up (the default behaviour then stays).
bool catchTerminationSignals();

// Closes `window` on a caught signal (also on one caught before this call).
void closeOnTerminationSignals(QWidget* window);
