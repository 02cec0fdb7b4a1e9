// The desktop's keyboard as a remote control.
#pragma once

#include <QString>
#include <optional>
#include <vector>

class QKeyEvent;

// The name of the remote control's key that a key of the keyboard plays, as in the previewer; none for others
// and for those with Ctrl or Alt.
std::optional<QString> keyName(const QKeyEvent& event);
