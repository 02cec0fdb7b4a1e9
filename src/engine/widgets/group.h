// A container: its children are made with it, in table order.
#pragma once

#include "engine/widget.h"

// Null on failure, a child's included.
Widget* groupCreate(Frame* frame, Widget* parent, PageObject record);
