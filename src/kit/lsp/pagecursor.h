// What is being written at a place of a page source: a key, a value, or a script.
//
// A mark is put there and the source read with it, so that an empty line is a key of the map that it would belong to.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/lsp/pageview.h"

struct PageCursor {
  enum Kind { nothing, key, value, script } kind = nothing;
  size_t begin = 0, end = 0;  // of the word in the source, which may be empty; of a quoted one what is in the quotes
  bool isQuoted = false;
  std::string written;  // of the word, before the cursor

  std::vector<std::string> path;       // keys from the outermost to that of the map which the key, or the value, is of
  std::string keyOfValue;              // of a value; of an entry of a list that of the list
  bool isEntry = false;                // of a value: an entry of a list, which may become a map
  bool hasColon = false;               // of a key: there is one already
  std::vector<std::string> keys;       // of a key: what the map has besides
  std::optional<SourceObject> object;  // that the key, or the value, is of; its node is of `view`
  std::shared_ptr<const PageView> view;  // of the source with the mark
  std::string scriptText;                // of a script, without the mark
  size_t scriptOffset = 0;               // of the cursor in it
};

PageCursor pageCursorAt(const EditedText& text, size_t offset);
