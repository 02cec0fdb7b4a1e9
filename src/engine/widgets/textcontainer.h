// A list of lines, each placed by the page, that scrolls, with one of them selected if the page wants that.
//
// What surprises: moving the selection out of view brings the line that was selected before to the view's edge, so the
// list scrolls by pages.
#pragma once

#include <vector>

#include "engine/page/widget.h"
#include "engine/text/textstyle.h"

struct ContainerLine {
  uint16_t x = 0, y = 0;             // pixels; y is the baseline, both relative to the container's unscrolled corner
  const TextStyle* style = nullptr;  // the frame's; null when the page has none of that name
  const char* content = nullptr;     // in the page, or null
};

struct TextContainerWidget : Widget {
  using Widget::Widget;
  int handleEvent(const Event* event) override;

  int32_t scrollOffset = 0;                    // pixels
  int32_t scrollDelta = 1;                     // pixels of one scroll step
  int32_t selectedLine = 0;                    // counted from 1; 0 for none
  const TextStyle* selectTextStyle = nullptr;  // the frame's; null for none
  std::vector<ContainerLine> lines;
};

WidgetPtr<> textContainerCreate(WidgetOwner* owner, Widget* parent, PageObject record);
