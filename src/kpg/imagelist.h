// What picture and colour table files hold, for people.
#pragma once

#include <ostream>
#include <string>

// PNG and GIF are told by their first bytes, a table by the extension ".clut"; all else is taken for a picture of the
// player. Throws CommandError.
void listImageFile(const std::string& path, std::ostream& out);
