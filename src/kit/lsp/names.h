// A name in page sources and scripts, and all places that mean the same: a widget in a page and in `widgets.go`, a
// global in all scripts of a page, a variable in its function.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/lsp/sourceviews.h"

enum class SharedNameKind { widget, style, madeBy, constant, parameter, global, selector, variable };

struct SharedName {
  SharedNameKind kind;
  std::string name;  // of a parameter with its template's in front
  // Of a variable: the script that it is in, and its number there.
  std::shared_ptr<const ScriptView> script{};
  uint32_t symbol = 0;
};

struct NamePlace {
  std::string path;
  std::shared_ptr<const EditedText> text;
  size_t begin, end;  // bytes, without quotes
  bool isDefinition;
  bool isInScript;
  bool isQuoted;
};

// The name that the byte of the file lies in, or right behind, and that place.
std::optional<std::pair<SharedName, NamePlace>> nameAt(SourceViews& views, const std::string& path, size_t offset);

// In the order of views.related, and in that of each text.
std::vector<NamePlace> placesOf(SourceViews& views, const std::string& path, const SharedName& name);

// Those where it comes from; of a global that nothing defines as a function, where each script first sets it.
std::vector<NamePlace> definitionsOf(SourceViews& views, const std::string& path, const SharedName& name);

// Without the name of the template in front of a parameter's.
std::string bareName(const SharedName& name);

// The file that a name in a source leads to: itself, or what the build makes it of.
std::optional<std::string> fileBehind(const std::string& source, const std::string& name);
