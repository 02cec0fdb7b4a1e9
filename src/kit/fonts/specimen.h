// A picture of what a font looks like on the player.
#pragma once

#include <string>

#include "kit/pictures/picture.h"

// A pangram at several sizes, each in the four looks of a text style: plain, gridfit, antialias, both. The font must be
// one that the player can draw with. Throws KitError.
Picture fontSpecimen(const std::string& font);
