// A container: its children are made with it, in table order.
#pragma once

#include "engine/page/widget.h"

inline constexpr int kMaxWidgetDepth = 256;  // a child nested deeper counts as absent

// Null on failure, a child's included.
WidgetPtr<> groupCreate(WidgetOwner* owner, Widget* parent, PageObject record);
