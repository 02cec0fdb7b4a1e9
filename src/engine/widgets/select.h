// One of several choices, or all of them with the current one in another style.
//
// What surprises: a choice is measured once, by the style that it is first drawn in, and keeps that size for good; and
// choices side by side paint no background, so that what stood there before shows on.
#pragma once

#include <string>
#include <vector>

#include "engine/widgets/textparts.h"

struct SelectChoice {
  std::string text;
  bool measured = false;
  int32_t width = 0, height = 0, ascent = 0;  // pixels, once measured
};

struct SelectWidget : Widget {
  using Widget::Widget;
  int handleEvent(const Event* event) override;

  bool showAll = false;
  bool vertical = false;  // with showAll: one under the other
  TextStylePair styles;
  uint32_t alignment = 0;             // a widgetAlign number
  std::vector<SelectChoice> choices;  // known to scripts by their places
  uint32_t current = 0;               // place of the chosen one; 0 too when there is none
};

struct RowSize {
  int32_t width, height;  // pixels
};

// Of all choices side by side, with what is drawn between them. Measures those that were never drawn.
RowSize selectRowSize(SelectWidget* widget);

// Null on failure; where all choices show, a missing style is one.
WidgetPtr<> selectCreate(WidgetOwner* owner, Widget* parent, PageObject record);
