// A picture from a file of either kind.
#pragma once

#include "kit/pictures/picture.h"

// The picture in a file, whose kind its first bytes say. Throws KitError.
Picture readPicture(const std::string& path);
