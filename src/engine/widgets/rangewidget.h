// What numbers and sliders share: an integer in a range, moved by direction keys or set by scripts.
#pragma once

#include "engine/events/value.h"
#include "engine/page/widget.h"

struct RangeWidget : Widget {
  using Widget::Widget;

  int32_t minimum = 1;
  int32_t maximum = 100;
  int32_t value = 1;  // setting the range leaves it alone, so it can lie outside
};

// Reads min, max and value, which is min where it is absent.
void rangeReadAttributes(RangeWidget* widget);

// Answers the direction keys and the value and range events; all else goes to widgetBaseEvent.
int rangeEvent(RangeWidget* widget, const Event& event);
