// Widget kinds by the `type` that pages call them.
#pragma once

#include <vector>

#include "engine/page/widget.h"

using WidgetCreator = WidgetPtr<> (*)(WidgetOwner* owner, Widget* parent, PageObject record);

// The kinds that one engine knows.
class WidgetTypes {
 public:
  void add(const char* name, WidgetCreator creator) { types.push_back({name, creator}); }  // hides one of that name
  WidgetPtr<> make(WidgetOwner* owner, Widget* parent, PageObject record) const;

 private:
  struct Type {
    const char* name;
    WidgetCreator creator;
  };
  std::vector<Type> types;  // oldest first; looked up from the newest
};

WidgetTypes& currentWidgetTypes();  // of the engine that is current on this thread

// A widget of the kind that the record's `type` names. An absent or unknown type makes a plain widget. Null on failure.
WidgetPtr<> widgetFromRecord(WidgetOwner* owner, Widget* parent, PageObject record);
