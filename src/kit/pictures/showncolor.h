// Which colours a 16-bit page shows, and how to come near to one that was meant.
//
// The screen has six bits of luma and five of each colour difference, all cut down, so that dark colours drift towards
// green or blue.
#pragma once

#include <cstdint>

// What the screen shows for a colour that a page writes; both 0x00RRGGBB.
uint32_t shownColor(uint32_t rgb);

// The colour to write in its place so that what shows keeps the hue, and is then as near as can be. A grey, which has
// no hue, stays free of one as far as it can.
uint32_t colorOfSameHue(uint32_t rgb);

// How well the one is read on the other, both 0x00RRGGBB: the ratio of their lightness, from 1 for none to 21 for black
// and white. Large letters want 3.
double contrastOf(uint32_t rgb, uint32_t other);

double hueOf(uint32_t rgb);  // degrees, 0 to 360; -1 for a grey
