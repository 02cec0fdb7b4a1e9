#include "engine/widgets/navigatekind.h"

namespace {

constexpr uint32_t kUpLeft = kDirectionUp | kDirectionLeft, kUpRight = kDirectionUp | kDirectionRight;
constexpr uint32_t kDownLeft = kDirectionDown | kDirectionLeft, kDownRight = kDirectionDown | kDirectionRight;

NavigateKind upDownKind(uint32_t direction) {
  switch (direction) {
    case kDirectionUp:
    case kUpLeft:
    case kUpRight: return NavigateKind::next;
    case kDirectionDown:
    case kDownLeft:
    case kDownRight: return NavigateKind::previous;
    default: return NavigateKind::none;
  }
}

NavigateKind leftRightKind(uint32_t direction) {
  switch (direction) {
    case kDirectionRight:
    case kUpRight:
    case kDownRight: return NavigateKind::next;
    case kDirectionLeft:
    case kUpLeft:
    case kDownLeft: return NavigateKind::previous;
    default: return NavigateKind::none;
  }
}

// Up means "previous" here but "next" for upDown, and left is "next"; pages rely on both.
NavigateKind bothKind(uint32_t direction) {
  switch (direction) {
    case kDirectionDown:
    case kDirectionLeft:
    case kDownRight: return NavigateKind::next;
    case kDirectionUp:
    case kDirectionRight:
    case kUpLeft: return NavigateKind::previous;
    case kDownLeft:
    case kUpRight: return NavigateKind::eat;
    default: return NavigateKind::none;
  }
}

}  // namespace

NavigateKind navigateKind(const Widget* widget, const Event& event) {
  const bool upDown = widget->flags & kWidgetNavigateUpDown;
  const bool leftRight = widget->flags & kWidgetNavigateLeftRight;
  if (upDown && leftRight) return bothKind(event.data);
  if (upDown) return upDownKind(event.data);
  if (leftRight) return leftRightKind(event.data);
  return NavigateKind::none;
}
