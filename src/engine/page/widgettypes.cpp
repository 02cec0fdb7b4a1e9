#include "engine/page/widgettypes.h"

#include <cstring>

WidgetPtr<> WidgetTypes::make(WidgetOwner* owner, Widget* parent, PageObject record) const {
  const char* name;
  if (attrString(record, "type", &name)) {
    for (auto type = types.rbegin(); type != types.rend(); ++type)
      if (std::strcmp(type->name, name) == 0) return type->creator(owner, parent, record);
  }
  return widgetCreate(owner, parent, record);
}

WidgetPtr<> widgetFromRecord(WidgetOwner* owner, Widget* parent, PageObject record) {
  return currentWidgetTypes().make(owner, parent, record);
}
