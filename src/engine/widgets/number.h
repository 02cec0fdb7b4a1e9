// An integer in figures, at the widget's corner, whatever its size.
//
// What surprises: unlike a text, a highlighted number without a highlight style shows nothing.
#pragma once

#include "engine/widgets/rangewidget.h"
#include "engine/widgets/textparts.h"

struct NumberWidget : RangeWidget {
  using RangeWidget::RangeWidget;
  int handleEvent(const Event* event) override;

  TextStylePair styles;
  int32_t digits = 0;  // at least so many, with zeros in front; a negative count appends spaces instead
};

// What it shows.
std::string numberFigures(const NumberWidget& widget);

WidgetPtr<> numberCreate(WidgetOwner* owner, Widget* parent, PageObject record);
