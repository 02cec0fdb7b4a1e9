// The display surface: from integer rectangles and colours to the virtual screen's pixels.
//
// There is no double buffering: each operation draws straight into the frame buffer through the graphics library, and
// hands what changed to the host before it returns.
#pragma once

#include <cstdint>

#include "engine/target.h"
#include "gfx/foundation/hsrect.h"

class hsGAttribute;
class hsGBitmap;
class hsGColorTable;
class hsGRasterDevice;

// Colours that mean the same on every screen: a palette index on an 8-bit screen, else 0xYYRRBBAA.
inline constexpr int kColorBlack = 1, kColorWhite = 2, kColorTransparent = 3;
uint32_t standardColor(int n);  // 0 for any other number

// Makes the device and the host's screen window, width x height pixels.
void displayCreate(int width, int height, int depth);

// 8 through the colour table, or 16; 1 on success, 0 for another depth. A change loses the screen's content and an
// 8-bit screen's colour table.
int displaySetDepth(int depth);
int displayDepth();

// Hands the changed rectangle, cut to the screen, to the host; the whole screen when nothing was recorded.
void displayFlush();

void displaySwap(int value);  // records a pending swap
int displayTakeSwap();        // whether one was pending

// Fills the rectangle (pixels; edges wrap at 16 bits) with an engine colour.
void displayFillRect(const Bounds& rect, uint32_t color);

// The same for a rectangle in 16.16, without a flush. One with an edge that is no number fills nothing.
void displayFillFixed(const hsRect& rect, uint32_t color);

// Copies a bitmap to the screen with its top left corner at (x, y), and flushes.
void displayCopyBitmap(const hsGBitmap& bitmap, int32_t x, int32_t y);

// The colour table of an 8-bit screen: 1 if that changed anything, 0 otherwise and on a 16-bit screen.
int displaySetColorTable(hsGColorTable* table);
hsGColorTable* displayColorTable();  // of an 8-bit screen; null on a 16-bit one

// Puts an engine colour into a paint, as the screen's depth wants it.
void displaySetColor(hsGAttribute* attribute, uint32_t color);

// For text: the screen's device, and the one paint that draws all text on it, which keeps what no style resets.
hsGRasterDevice* displayDevice();
hsGAttribute* displayTextPaint();

void displayDestroy();
