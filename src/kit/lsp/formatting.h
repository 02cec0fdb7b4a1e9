// Scripts in the one style, wherever they lie: files, and those after a bar in page sources.
//
// In a page source all else stays as it is, and so do scripts with expressions, "$(...)": what they become only the
// build knows.
#pragma once

#include <optional>
#include <string>

#include "kit/lsp/scriptview.h"

struct SourceEdit {
  size_t begin, end;  // bytes of the source
  std::string text;   // that is to stand there
};

// Of a script without errors; none if it is in that style, or can't be brought into it.
std::optional<SourceEdit> formatEdit(const ScriptView& script);

// A page source, which `path` names, with its scripts in the style. Throws KitError for scripts with errors, of each
// FILE:LINE and what is wrong.
std::string formatPageScripts(const std::string& path, const std::string& source);
