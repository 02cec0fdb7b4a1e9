// Whether the bytes of a built file have the name of another in them.
//
// What a script opens by a computed name can't be known, so this looks for its pieces: in doubt a file is needed.
#pragma once

#include <string>
#include <string_view>

// The last part of the name, as a whole.
bool mentions(std::string_view bytes, const std::string& file);

// That, or its stem and, in a text of its own, its extension, as scripts have them that say `name + ".kpx"`.
bool scriptMentions(std::string_view bytes, const std::string& file);
