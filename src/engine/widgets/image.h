// A picture, and another one while it is highlighted.
#pragma once

#include "engine/page/widget.h"

struct ImageWidget : Widget {
  using Widget::Widget;
  int handleEvent(const Event* event) override;

  std::optional<std::string> src;           // image file
  std::optional<std::string> highlightSrc;  // shown while highlighted; without it a highlighted image shows nothing
};

WidgetPtr<> imageWidgetCreate(WidgetOwner* owner, Widget* parent, PageObject record);
