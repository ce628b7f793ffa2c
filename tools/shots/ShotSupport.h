#pragma once
// What the README's picture tools share: setting up before the application
// exists, showing the real window at a fixed size, letting it run, answering
// every message box without a person, and writing PNG files.

#include <QImage>
#include <QSize>
#include <QString>

class OffinePlayWidget;
class QRect;
class QWidget;
class ScanDeck;

namespace shots {

// Before the QApplication: VTK's warnings off, the graphics format set.
void prepare();
// Lets the window run for `ms` milliseconds.
void settle(int ms);
// Shows `window` unmaximised at the top left corner with this size.
void showWindow(ScanDeck& window, const QSize& size);
// Every message box is printed under the tool's name and answered with OK.
void answerMessages(const char* tool);
// Prints "tool: message" on standard error; returns 1, the failure status.
int fail(const char* tool, const QString& message);
// Clicks the button of this name under `root`.
void click(QWidget& root, const char* name);
// Writes this part of the screen, so that a dialog or a second window over
// the main one is in the picture.
bool saveScreen(const QRect& area, const QString& path);
// Shows the offline page and gives its player.
OffinePlayWidget& showPlayer(ScanDeck& window);
// The player opens `path` through its Open button, as an operator opens a
// file; any message it shows is the tool's failure.
OffinePlayWidget& openInPlayer(ScanDeck& window, const QString& path, const char* tool);
// Writes `image` (scaled down to `maxWidth` when wider and it is above 0)
// and says so on standard output.
bool savePng(const QImage& image, const QString& path, int maxWidth = 0);

}  // namespace shots
