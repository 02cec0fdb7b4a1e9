#include "studio/window/keys.h"

#include <QKeyEvent>

#include "host/keytable.h"

namespace {

std::optional<RemoteKey> remoteKey(const KeyMessage& message) {
  return message.virtualKey ? remoteKeyForVirtualKey(message.virtualKey) : remoteKeyForCharacter(message.character);
}

std::optional<RemoteKey> remoteKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Left: return remoteKeyForVirtualKey(kVirtualLeft);
    case Qt::Key_Up: return remoteKeyForVirtualKey(kVirtualUp);
    case Qt::Key_Right: return remoteKeyForVirtualKey(kVirtualRight);
    case Qt::Key_Down: return remoteKeyForVirtualKey(kVirtualDown);
    case Qt::Key_Delete: return remoteKeyForVirtualKey(kVirtualDelete);
    default: break;
  }
  const QByteArray text = event.text().toLatin1();
  return text.size() == 1 ? remoteKeyForCharacter(text[0]) : std::nullopt;
}

}  // namespace

std::optional<QString> keyName(const QKeyEvent& event) {
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return std::nullopt;
  const auto key = remoteKey(event);
  if (!key) return std::nullopt;
  for (const std::string& name : keyNames()) {
    const auto known = remoteKey(*keyMessageNamed(name));
    if (known && known->code == key->code && known->data == key->data) return QString::fromStdString(name);
  }
  return std::nullopt;
}
