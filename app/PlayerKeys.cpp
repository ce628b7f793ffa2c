#include "PlayerKeys.h"

#include "KeyboardShortcuts.h"
#include "OffinePlayWidget.h"

void addPlayerKeys(KeyboardShortcuts& keys, OffinePlayWidget* player)
{
    keys.add(Qt::Key_Left, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Previous frame"), [player] { player->previousFrame(); });
    keys.add(Qt::Key_Right, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Next frame"), [player] { player->nextFrame(); });
    keys.add(Qt::Key_Home, QT_TRANSLATE_NOOP("KeyboardShortcuts", "First frame"), [player] { player->firstFrame(); });
    keys.add(Qt::Key_End, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Last frame"), [player] { player->lastFrame(); });
    keys.add(Qt::Key_N, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Next incomplete frame (recording)"),
             [player] { player->nextIncompleteFrame(); });
    keys.add(Qt::SHIFT | Qt::Key_N, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Previous incomplete frame (recording)"),
             [player] { player->previousIncompleteFrame(); });
}
