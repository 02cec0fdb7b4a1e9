// A bar: the part below the value in one colour, the rest in another.
//
// The bar covers the whole widget, so a slider paints neither background nor highlight frame.
#pragma once

#include "engine/widgets/rangewidget.h"

struct SliderWidget : RangeWidget {
  using RangeWidget::RangeWidget;
  int handleEvent(const Event* event) override;

  uint32_t fillColor = 0;
  uint32_t restColor = 0;
};

WidgetPtr<> sliderCreate(WidgetOwner* owner, Widget* parent, PageObject record);
