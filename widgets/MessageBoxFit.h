#pragma once
// Message boxes that show their whole text, exactly as given. QMessageBox
// wraps long text only at spaces, so a long path or any other long run
// without a space runs off the edge of the box. Every message box of the
// program, Qt's own included (the file dialog's "File not found"), is made
// wide enough for its longest run before it is shown (up to the width of the
// screen), and its text can be selected and copied as it is.

#include <QString>

class QFont;

namespace messagebox {

// The widest run of `text` without a space, in pixels of `font`.
int longestRunWidth(const QString& text, const QFont& font);

// Installs the program-wide fitting once (later calls do nothing).
void fitAllMessageBoxes();

}  // namespace messagebox
