// A bitmap that a device draws into for a while, to draw it back as a whole.
#pragma once

#include <vector>

#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgdevice.h"
#include "gfx/vector/hsregion.h"

struct hsGLayer {
  // Pixels, 32 bits with alpha, for the device rectangle. attr may be null.
  hsGLayer(const hsIntRect& rect, hsGDeviceState* savedState, hsGAttribute* attr);
  hsGLayer(const hsGLayer&) = delete;
  hsGLayer& operator=(const hsGLayer&) = delete;

  static void Pop(hsGLayer** top);

  // Draws it, or what its attribute's layer filter makes of it, at its place.
  void DrawInto(const hsGBitmap& target, const hsRegion* clip) const;

  std::vector<hsGColor32> fPixels;  // of fBitmap
  hsGLayer* fNext = nullptr;
  hsGDeviceState* fSavedState;  // on top of the device's stack when the layer opened
  hsRef<hsGAttribute> fAttr;
  hsGBitmap fBitmap;
  int32_t fX, fY;  // device position
};
