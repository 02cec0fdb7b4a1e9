// Patterns of names, as shells have them: `*` for any characters, `?` for one, `[a-z]` for one of a set and `[!a-z]`
// for one that is not in it, and a backslash before a character that means itself.
#pragma once

#include <string_view>

// Whether the whole text, slashes and all, is what the pattern says.
bool matchesWildcards(std::string_view pattern, std::string_view text);
