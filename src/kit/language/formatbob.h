// Bob source in one style: two spaces of indentation, 120 columns, comments and single blank lines kept.
//
// Formatting what has been formatted changes nothing, and the code that a formatted source compiles to is the same,
// byte for byte. Where an author has broken a list or a chain of operators into lines, it stays broken.
#pragma once

#include <string>
#include <string_view>

#include "kit/language/bobtree.h"

struct BobFormatOptions {
  size_t columns = 120;  // to keep within where that is possible
  size_t indent = 0;     // columns that the source will be moved to the right by, as in a page source
};

// The source, which `file` names, in the style. Throws KitError for one with errors, of each FILE:LINE and what is
// wrong, and for one that a byte 0 or 0xFF ends early. The result ends with a line end, unless it is empty.
std::string formatBob(std::string_view source, const std::string& file, const BobFormatOptions& options = {});
