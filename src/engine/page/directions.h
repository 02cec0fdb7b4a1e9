// Where the direction keys lead: for each, the script that runs in place of a move, and the links of the focused widget
// that are tried in order.
#pragma once

#include "engine/events/event.h"
#include "engine/format/attributes.h"

struct Direction {
  uint32_t data;             // of the key's event
  ScriptAttribute script;    // null for diagonals, which run none
  StringAttribute links[3];  // a null ends them
};

inline constexpr Direction kDirections[] = {
    {kDirectionUp, "onUp", {"up"}},
    {kDirectionDown, "onDown", {"down"}},
    {kDirectionLeft, "onLeft", {"left"}},
    {kDirectionRight, "onRight", {"right"}},
    {kDirectionUp | kDirectionLeft, nullptr, {"upLeft", "up", "left"}},
    {kDirectionDown | kDirectionLeft, nullptr, {"downLeft", "down", "left"}},
    {kDirectionUp | kDirectionRight, nullptr, {"upRight", "up", "right"}},
    {kDirectionDown | kDirectionRight, nullptr, {"downRight", "down", "right"}},
};
