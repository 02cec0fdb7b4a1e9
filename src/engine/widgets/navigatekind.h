// What a direction key means to a widget that takes some of them for itself, by its `navigate` attribute.
#pragma once

#include "engine/page/widget.h"

enum class NavigateKind { none = 0, next = 1, previous = 2, eat = 3 };

NavigateKind navigateKind(const Widget* widget, const Event& event);
