// Why a widget is not to be seen, in sentences.
#pragma once

#include <string>
#include <vector>

#include "engine/inspect.h"

struct UnseenSentence {
  struct Widget {
    WidgetId id;
    std::string label;
  };

  std::string text;        // "covered by 'panel'"
  std::vector<Widget> by;  // whom the text names, in its order, to click
};

// None when nothing is known to be wrong.
std::vector<UnseenSentence> unseenSentences(Engine& engine, WidgetId id);
