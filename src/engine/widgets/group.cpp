#include "engine/widgets/group.h"

#include "engine/frame.h"
#include "engine/graveyard.h"
#include "engine/widgettypes.h"

namespace {

constexpr int kMaxDepth = 256;  // a child beyond it counts as absent

// False when a child fails, or when a nested page's script has taken the frame away meanwhile.
bool createChildren(Frame* frame, Widget* group, const PageTable& children) {
  const uint32_t generation = frame->generation;
  for (uint32_t i = 0; i < children.count(); ++i) {
    const PageObject record = children.object(i);
    if (!record || group->depth >= kMaxDepth || engineStackSpent()) continue;
    Widget* child = widgetFromRecord(frame, group, record);
    if (!child) return false;
    if (frame->gone || frame->generation != generation) {
      widgetDestroy(child);
      return false;
    }
    frameAppendWidget(frame, child);
  }
  return true;
}

}  // namespace

Widget* groupCreate(Frame* frame, Widget* parent, PageObject record) {
  Widget* group = widgetCreate(frame, parent, record);
  PageTable children;
  if (!group || !widgetAttrTable(group, "children", &children)) return group;
  if (createChildren(frame, group, children)) return group;
  widgetDestroy(group);
  return nullptr;
}
