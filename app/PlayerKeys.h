#pragma once
// The keys that step through a loaded recording: the arrows, Home and End,
// and N / Shift+N to the next / previous frame that came in with gaps.

class KeyboardShortcuts;
class OffinePlayWidget;

void addPlayerKeys(KeyboardShortcuts& keys, OffinePlayWidget* player);
