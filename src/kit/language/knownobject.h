// What an expression is known to be from how it is written.
#pragma once

#include <cstdint>
#include <string>

#include "kit/language/bobtree.h"

// The parent of an object literal or of what `new` makes; String, Integer, Float, Vector, Symbol or Method of another
// literal; otherwise empty.
std::string bobKindOf(const BobTree& tree, uint32_t node);
