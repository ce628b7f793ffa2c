#pragma once
// Message boxes that show their whole text. QMessageBox wraps long text only
// at spaces, so a long path or any other long run without a space runs off
// the edge of the box. Every message box of the program, Qt's own included
// (the file dialog's "File not found"), gets break opportunities in such runs
// before it is shown: invisible zero-width spaces after path separators and
// every few characters, so that the box wraps the run instead of cutting it.

#include <QString>

namespace messagebox {

// A plain text with a zero-width space after each '/' or '\' and every
// kMaxRun characters of a run without a space; shorter runs stay untouched.
QString breakableText(const QString& text);
constexpr int kMaxRun = 24;

// Installs the program-wide fitting once (later calls do nothing).
void fitAllMessageBoxes();

}  // namespace messagebox
