// The display surface: from integer rectangles and colours to the virtual screen's pixels.
//
// There is no double buffering: each operation draws straight into the frame buffer through the graphics library, and
// passes what changed to the host before it returns.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/base/bounds.h"
#include "engine/screen/dirtytracker.h"
#include "engine/screen/standardcolor.h"
#include "gfx/foundation/hsref.h"
#include "gfx/pixel/hsgrasterdevice.h"

inline constexpr int kScreenWidth = 720, kScreenHeight = 480;  // pixels

class DisplaySurface {
 public:
  // Makes the device and the host's screen window, width x height pixels.
  DisplaySurface(int width, int height, int depth);

  // 8 through the colour table, or 16; 1 on success, 0 for another depth. A change loses the screen's content and an
  // 8-bit screen's colour table.
  int setDepth(int newDepth);
  int depth() const { return bitsPerPixel; }

  // Passes the changed rectangle, cut to the screen, to the host; the whole screen when nothing was recorded.
  void flush();

  // Fills a rectangle in 16.16 with an engine colour, without a flush. One with an edge that is no number fills
  // nothing.
  void fill(const hsRect& rect, uint32_t color);

  // Copies a bitmap to the screen with its top left corner at (x, y), and flushes.
  void copy(const hsGBitmap& bitmap, int32_t x, int32_t y);

  // The colour table of an 8-bit screen: true if that changed anything, false otherwise and on a 16-bit screen.
  bool setColorTable(hsGColorTable* table);
  hsGColorTable* activeColorTable() const;  // null on a 16-bit screen

  // Puts an engine colour into a paint, as the screen's depth wants it.
  void setColor(hsGAttribute* attribute, uint32_t color) const;

  // The pixels as the player stores them: indices, or words of video colour.
  const hsGBitmap& frameBuffer() const { return bitmap; }

  // For text: the screen's device, and the one paint that draws all text on it, which keeps what no style resets.
  hsGRasterDevice* rasterDevice() { return device.get(); }
  hsGAttribute* textPaint() { return &paintOfText; }

  bool swapAtStepEnd = false;  // a page has asked for one, which the step under way or the next one records
  bool swapPending = false;    // recorded, for the host to take

 private:
  bool allocatePixels(uint64_t size);

  int width, height;     // pixels
  int bitsPerPixel = 0;  // 0 until first set, then 8 or 16
  std::vector<uint8_t> pixels;
  hsGBitmap bitmap;
  hsRef<hsGColorTable> freshColorTable = hsMake<hsGColorTable>();  // of a fresh 8-bit screen
  hsRef<DirtyTracker> tracker = hsMake<DirtyTracker>();
  hsRef<hsGRasterDevice> device = hsMake<hsGRasterDevice>();

  // What fills are drawn with, kept so that a fill allocates nothing.
  hsGAttribute fillPaint;
  hsPath fillPath;
  hsGAttribute copyPaint;
  hsGAttribute paintOfText;
};

DisplaySurface& currentDisplay();  // of the engine that is current on this thread, which has one from its start on

uint32_t standardColor(int n);  // on its screen

int displaySetDepth(int depth);
void displayFlush();

// Records a pending swap, and whether one was pending: for a host that shows whole frames only.
void displaySwap(int value);
int displayTakeSwap();

// Fills the rectangle (pixels; edges wrap at 16 bits) with an engine colour, and flushes.
void displayFillRect(const Bounds& rect, uint32_t color);

// 1 if that changed anything, 0 otherwise and on a 16-bit screen.
int displaySetColorTable(hsGColorTable* table);
