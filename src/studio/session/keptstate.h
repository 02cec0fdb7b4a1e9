// What a user and scripts have made of the pages on the screen: the values of widgets and where the focus is, by name.
//
// A widget's name is that of the frames around it and its own, with a slash in between; those without a name are left
// out, and of several with one name the first counts, as it does for scripts.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>

#include "engine/engine.h"

struct KeptState {
  using Value = std::variant<int32_t, std::string>;

  std::map<std::string, Value> values;       // of numbers, sliders, selects and texts; a list's selected line
  std::map<std::string, std::string> focus;  // the widget by its frame; "" is the top frame
};

KeptState readKeptState(Engine& engine);

// Gives each widget of `wanted` its value and each frame its focus, where they differ from what is there now. What the
// pages don't have any more is left out. Hooks run as when a script does the same.
void restoreKeptState(Engine& engine, const KeptState& wanted);

// What somebody has changed: all of `now` that `before` doesn't have in the same way.
KeptState changedState(const KeptState& before, const KeptState& now);
