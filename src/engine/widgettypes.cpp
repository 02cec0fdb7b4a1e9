#include "engine/widgettypes.h"

#include <cstring>
#include <vector>

#include "engine/frame.h"
#include "engine/widgets/group.h"
#include "engine/widgets/image.h"
#include "engine/widgets/number.h"
#include "engine/widgets/select.h"
#include "engine/widgets/slider.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"

namespace {

struct WidgetType {
  const char* name;
  WidgetCreator creator;
};

std::vector<WidgetType> widgetTypes;  // oldest first; looked up from the newest

Widget* createFrame(Frame* frame, Widget* parent, PageObject record) { return frameCreate(frame, parent, record); }

}  // namespace

void widgetTypeRegister(const char* name, WidgetCreator creator) { widgetTypes.push_back({name, creator}); }

Widget* widgetFromRecord(Frame* frame, Widget* parent, PageObject record) {
  const char* name;
  if (attrString(record, "type", &name)) {
    for (auto type = widgetTypes.rbegin(); type != widgetTypes.rend(); ++type)
      if (std::strcmp(type->name, name) == 0) return type->creator(frame, parent, record);
  }
  return widgetCreate(frame, parent, record);
}

void widgetTypesRegisterAll() {
  widgetTypeRegister("frame", createFrame);
  widgetTypeRegister("image", imageWidgetCreate);
  widgetTypeRegister("number", numberCreate);
  widgetTypeRegister("select", selectCreate);
  widgetTypeRegister("slider", sliderCreate);
  widgetTypeRegister("text", textCreate);
  widgetTypeRegister("textContainer", textContainerCreate);
  widgetTypeRegister("group", groupCreate);
}

void widgetTypesReset() { widgetTypes.clear(); }
