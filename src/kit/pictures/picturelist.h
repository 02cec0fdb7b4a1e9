// What picture and colour table files hold, for people.
#pragma once

#include <string>

// PNG and GIF are known by their first bytes, a table by the extension ".clut"; anything else is read as a picture of
// the player. Returns whole lines; `swatches` puts patches of colour into those of a table, by escape sequences. Throws
// KitError.
std::string listPictureFile(const std::string& path, bool swatches = false);
