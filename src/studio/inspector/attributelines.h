// All that can be said of a widget: each attribute with the value in force, where it came from, and what it is for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/inspect.h"
#include "studio/inspector/widgetsources.h"

enum class EditBy { nothing, text, number, choice, flag, color };

struct AttributeLine {
  std::string name;
  AttributeKind kind = AttributeKind::string;
  std::string value;  // in force, as an author writes it; of scripts and tables how much there is
  ValueOrigin origin = ValueOrigin::byDefault;
  std::string from;                // "menu.yaml:12", "default", "changed by a script", "refused: ..."
  std::optional<YamlPlace> place;  // where the page has its value from, also when another is in force
  std::vector<std::string> uses;   // what brought the place in, the nearest first: "template 'button' at menu.yaml:30"
  std::string help, range;         // one line each, without marks
  std::vector<std::string> choices;
  EditBy editBy = EditBy::nothing;  // which editor suits it
  std::string whyNotEdited;         // a sentence, where none does
};

// The rectangle first, then the attributes in the order of their table. Empty for a widget that has gone.
std::vector<AttributeLine> attributeLines(PageRun& run, WidgetSources& sources, WidgetId id);
