#include "engine/widgets/group.h"

#include "engine/events/graveyard.h"
#include "engine/page/frame.h"
#include "engine/page/widgettypes.h"

namespace {

// False when a child fails, or when a nested page's script has taken the frame away meanwhile.
bool createChildren(Widget* group, const PageTable& children) {
  Frame* frame = frameOf(group);
  const uint32_t generation = frame->generation;
  for (uint32_t i = 0; i < children.count(); ++i) {
    const PageObject record = children.object(i);
    if (!record || group->depth >= kMaxWidgetDepth || engineStackSpent()) continue;
    Widget* child = widgetFromRecord(group->owner, group, record);
    if (!child) return false;
    if (frame->gone || frame->generation != generation) {
      widgetDestroy(child);
      return false;
    }
    frame->append(child);
  }
  return true;
}

}  // namespace

Widget* groupCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  Widget* group = widgetCreate(owner, parent, record);
  PageTable children;
  if (!group || !widgetAttrTable(group, "children", &children)) return group;
  if (createChildren(group, children)) return group;
  widgetDestroy(group);
  return nullptr;
}
