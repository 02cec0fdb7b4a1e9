#include "engine/images/imagedraw.h"

#include <algorithm>

#include "engine/images/imageload.h"
#include "engine/screen/display.h"
#include "gfx/foundation/hstypes.h"
#include "gfx/pixel/hsgbitmap.h"
#include "host/host.h"

namespace {

// Copies w x h pixels from (sx, sy) in the picture on to (x, y). A source that begins left of or above the picture is
// cut to it, and the destination moves along.
void copyPiece(const ImageCache& images, const CachedImage& image, int sx, int sy, int x, int y, int w, int h) {
  if (sx < 0) {
    x = hsWrapSub(x, sx);
    w = hsWrapAdd(w, sx);
    sx = 0;
  }
  if (sy < 0) {
    y = hsWrapSub(y, sy);
    h = hsWrapAdd(h, sy);
    sy = 0;
  }
  if (w < 1 || h < 1) return;
  hsGBitmap bitmap(hsGBitmap::kConfig_Index8);
  bitmap.fImage = const_cast<uint8_t*>(images.pixels(image)) + size_t(sy) * image.rowBytes + size_t(sx);
  bitmap.fWidth = uint32_t(w);
  bitmap.fHeight = uint32_t(h);
  bitmap.fRowBytes = image.rowBytes;
  const Clut* clut = images.clut(image);
  DisplaySurface& display = currentDisplay();
  bitmap.SetColorTable(clut ? clut->colorTable.get() : display.activeColorTable());
  display.copy(bitmap, x, y);
}

// Calls piece(source, destination, length) for each tile along one axis that touches the screen: the first begins at
// `start` in the picture, all others at 0, and the last is cut.
template <class Piece>
void eachTile(int start, int size, int from, int length, int screen, Piece&& piece) {
  int64_t at = from;
  const int64_t end = at + length;
  for (int source = start; at < end && at < screen;) {
    const int64_t step = std::min<int64_t>(size - source, end - at);
    if (at + step > 0) piece(source, int(at), int(step));
    at += step;
    source = 0;
    if (at + size <= 0 && end > 0) at += -at / size * size;  // whole tiles outside
  }
}

}  // namespace

int imageDraw(const char* name, int offsetX, int offsetY, Bounds* rect, bool tile) {
  ImageCache& images = currentImages();
  const CachedImage* image = imageGet(name);
  if (!image) {
    hostLog(" -- not found\n");
    return 0;
  }
  Clut* clut = images.clut(*image);
  if (clut) clutActivate(clut);
  const int width = int(image->width), height = int(image->height);
  if (width == 0 || height == 0) return 1;
  const int sx = offsetX % width, sy = offsetY % height;
  if (rect->w == 0) rect->w = width - sx;
  if (rect->h == 0) rect->h = height - sy;
  if (!clut && !currentDisplay().activeColorTable()) {  // a 16-bit screen has no colours for it
    displayFlush();
    return 1;
  }
  if (!tile) {
    copyPiece(images, *image, sx, sy, rect->x, rect->y, std::min(width - sx, rect->w), std::min(height - sy, rect->h));
    return 1;
  }
  eachTile(sy, height, rect->y, rect->h, kScreenHeight, [&](int ty, int y, int h) {
    eachTile(sx, width, rect->x, rect->w, kScreenWidth,
             [&](int tx, int x, int w) { copyPiece(images, *image, tx, ty, x, y, w, h); });
  });
  return 1;
}
