// Symbols: hashed, interned, and kept in chunks that never move.
#pragma once

#include <string_view>

#include "bob/base/value.h"

// The one symbol of that text.
BobValue bobIntern(BobInterp* interp, std::string_view text);

// The hash of strings and symbols.
uint32_t bobHashBytes(std::string_view bytes);
// A symbol in a chunk, not interned yet.
BobValue bobMakeSymbol(BobInterp* interp, std::string_view text, uint32_t hash);
