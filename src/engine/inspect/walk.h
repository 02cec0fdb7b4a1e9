// The widgets of an engine in the order of its pages, for the views. Nothing is kept between two looks.
#pragma once

#include <vector>

#include "engine/inspect.h"
#include "engine/page/frame.h"

// All, each before what lies in it. A widget whose parent is still being made comes under their frame.
std::vector<Widget*> walkWidgets(const Engine& engine);

Widget* widgetById(const Engine& engine, WidgetId id);  // null for one that has gone

std::vector<AttributeView> attributesOf(const Widget* widget);

int levelOf(const Widget* widget);  // below the top frame

WidgetKind kindOf(const Widget* widget);

inline bool isRootWidget(const Widget* widget) {
  const Frame* frame = frameOf(widget);
  return frame && widget->record == frame->rootObject;
}
