#pragma once
// SIGINT and SIGTERM close the window instead of killing the process, so a
// viewer stopped from a terminal (or by a test) leaves through its normal
// close path: the demo's simulator and the session's thread are stopped
// before the process ends.

class QWidget;

// Installs the handlers once per process; false when they cannot be set up.
bool closeOnTerminationSignals(QWidget* window);
