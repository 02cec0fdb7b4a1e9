#include "engine/widgets/widgetkinds.h"

#include "engine/page/pageload.h"
#include "engine/widgets/group.h"
#include "engine/widgets/image.h"
#include "engine/widgets/number.h"
#include "engine/widgets/select.h"
#include "engine/widgets/slider.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"

namespace {

WidgetPtr<> createFrame(WidgetOwner* owner, Widget* parent, PageObject record) {
  return frameCreate(owner, parent, record);
}

}  // namespace

void addWidgetKinds(WidgetTypes& types) {
  types.add("frame", createFrame);
  types.add("image", imageWidgetCreate);
  types.add("number", numberCreate);
  types.add("select", selectCreate);
  types.add("slider", sliderCreate);
  types.add("text", textCreate);
  types.add("textContainer", textContainerCreate);
  types.add("group", groupCreate);
}
