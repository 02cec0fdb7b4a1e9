#include "engine/page/widgetnames.h"

#include "engine/page/widget.h"

void WidgetNames::append(Widget* widget) {
  if (!widget->name) return;
  const auto [known, isNew] = chains.try_emplace(widget->name, Chain{widget, widget});
  if (!isNew) known->second.last = known->second.last->nextOfName = widget;
}

void WidgetNames::takeFirst(Widget* widget) {
  if (!widget->name) return;
  const auto known = chains.find(widget->name);
  known->second.first = widget->nextOfName;
  if (!widget->nextOfName) chains.erase(known);
}

Widget* WidgetNames::find(std::string_view name) const {
  const auto known = chains.find(name);
  return known == chains.end() ? nullptr : known->second.first;
}
