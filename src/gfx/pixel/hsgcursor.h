// A software cursor, drawn over a device's bitmap with the pixels under it kept aside.
#pragma once

#include <cstdint>
#include <vector>

#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgbounder.h"

class hsGCursor : public hsRefCnt {
 public:
  // 8, 16 or 32 bits a pixel; another size throws error 4. The hot spot is the pixel that the position names.
  void SetImage(const hsGBitmap& bitmap, int32_t hotX, int32_t hotY);
  void SetPosition(const hsGBitmap& target, int32_t x, int32_t y);  // cut to the target

  // Counted: it is drawn while more Shows than Hides were called.
  void Show() { ++fShowCount; }
  void Hide() { --fShowCount; }
  bool IsVisible() const { return fShowCount > 0 && fImage.fImage; }

  hsIntRect Bounds() const;  // device pixels
  // Whether a draw in rect would meet it, where it is or where it was drawn last.
  bool Touches(const hsIntRect& rect) const;
  // Keeps the pixels under it and draws it. An image that doesn't fit the target is reported and isn't seen.
  void Draw(const hsGBitmap& target);
  // Puts back what was kept, once, into the rectangle that it was taken from.
  void RestoreBackground(const hsGBitmap& target);

 private:
  hsGBitmap fImage;
  int32_t fPosX = 0, fPosY = 0, fHotX = 0, fHotY = 0;  // pixels
  hsGBitmap fBackground;                               // of the target's config; null image when nothing is kept
  hsIntRect fSavedRect{0, 0, 0, 0};                    // where fBackground lies, device pixels
  std::vector<uint8_t> fBackgroundPixels;
  int32_t fShowCount = 0;
};

// Takes the place of a device's bounder for the length of one draw: the first bound that touches the cursor takes it
// off the screen, and the end of the scope puts it back. Without a cursor it changes nothing.
class hsGCursorHider : public hsGBounder {
 public:
  hsGCursorHider(hsGCursor* cursor, const hsGBitmap& target, hsGBounder** bounder);
  ~hsGCursorHider() override;

  bool BoundRect(const hsIntRect& rect, const hsRegion* clip) override;

 private:
  hsGCursor* fCursor;  // null when there is nothing to hide
  const hsGBitmap& fTarget;
  hsGBounder** fSlot;
  hsGBounder* fNext;
  bool fHidden = false;
};
