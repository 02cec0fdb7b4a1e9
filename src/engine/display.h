// The display surface: from integer rectangles and colours to the virtual screen's pixels.
//
// There is no double buffering: each operation draws straight into the frame buffer and hands what changed to the
// host before it returns.
#pragma once

#include <cstdint>

#include "engine/target.h"

struct Clut;

// Colours that mean the same on every screen: a palette index on an 8-bit screen, else 0xYYRRBBAA.
inline constexpr int kColorBlack = 1, kColorWhite = 2, kColorTransparent = 3;
uint32_t standardColor(int n);  // 0 for any other number

// Makes the device and the host's screen window, width x height pixels.
void displayCreate(int width, int height, int depth);

// 8 through the colour table, or 16; 1 on success, 0 for another depth. A change loses the screen's content.
int displaySetDepth(int depth);
int displayDepth();

// Hands the changed rectangle, cut to the screen, to the host; the whole screen when nothing was recorded.
void displayFlush();

void displaySwap(int value);  // records a pending swap
int displayTakeSwap();        // whether one was pending

// Fills the rectangle (pixels; edges wrap at 16 bits) with an engine colour.
void displayFillRect(const Bounds& rect, uint32_t color);

// The colour table of an 8-bit screen: 1 if that changed anything, 0 otherwise and on a 16-bit screen.
int displaySetColorTable(const Clut* clut);

void displayDestroy();
