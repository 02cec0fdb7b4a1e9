#include "engine/widgets/group.h"

#include "engine/events/graveyard.h"
#include "engine/page/frame.h"
#include "engine/page/widgettypes.h"

namespace {

// False when a child fails, or when a nested page's script has taken the frame away meanwhile.
bool createChildren(Widget* group) {
  PageTable children;
  if (!widgetAttrTable(group, "children", &children)) return true;
  Frame* frame = frameOf(group);
  const uint32_t generation = frame->generation;
  for (uint32_t i = 0; i < children.count(); ++i) {
    const PageObject record = children.object(i);
    if (!record || group->depth >= kMaxWidgetDepth || engineStackSpent()) continue;
    WidgetPtr<> child = widgetFromRecord(group->owner, group, record);
    if (!child) return false;
    if (frame->gone || frame->generation != generation) return false;
    frame->append(std::move(child));
  }
  return true;
}

}  // namespace

WidgetPtr<> groupCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  WidgetPtr<> group = widgetCreate(owner, parent, record);
  if (group && !createChildren(group.get())) group.reset();
  return group;
}
