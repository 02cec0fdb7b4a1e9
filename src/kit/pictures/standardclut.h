// A colour table that suits any page.
#pragma once

#include <array>
#include <cstdint>

#include "engine/screen/standardcolor.h"

// Engine colours 0xYYRRBB00: 0 to 215 a cube of six steps each of red, green and blue (red the slowest), 216 to 234
// and 238, 239 greys between its own, 235 black, 236 white, 237 transparent.
std::array<uint32_t, kMaxClutColors> standardClut();
