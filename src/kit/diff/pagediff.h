// What differs between two pages, as their authors see them: widgets, attributes, text styles, scripts.
//
// Widgets with names are the same wherever they stand; others are matched by their contents and their order. Two
// sources are compared as they are once constants, templates and the like are written out; with a compiled page both
// are compared as compiled, and scripts by their instructions. The lines in which scripts were written don't count.
#pragma once

#include <string>
#include <vector>

// Lines such as "title: x: 40 -> 44"; none when nothing differs. Throws KitError for what is no page.
std::vector<std::string> pageDifferences(const std::string& a, const std::string& b);
