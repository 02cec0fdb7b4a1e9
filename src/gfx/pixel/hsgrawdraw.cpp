#include "gfx/pixel/hsgrawdraw.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgbitmapblitter.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/pixel/hsgpatheffectapplier.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/vector/hsscan.h"

namespace {

constexpr hsFixed kShortestLine = 8;  // raw units; a shorter one has no direction to be thick along

hsRect Sorted(const hsRect& r) {
  return {std::min(r.fLeft, r.fRight), std::min(r.fTop, r.fBottom), std::max(r.fLeft, r.fRight),
          std::max(r.fTop, r.fBottom)};
}

// The four corners of a line `half` thick to each side; false for a line too short to draw.
bool LineQuad(const hsPoint& p0, const hsPoint& p1, hsFixed half, bool square, hsPoint quad[4]) {
  const hsFixed dx = hsWrapSub(p1.fX, p0.fX), dy = hsWrapSub(p1.fY, p0.fY);
  if (hsMagnitude32(dx) < kShortestLine && hsMagnitude32(dy) < kShortestLine) return false;
  const hsFixed scale = hsFixDiv(half, hsMagnitude(dx, dy));
  const hsFixed vy = hsFixMul(dx, scale), vx = hsFixMul(dy, scale);
  const hsPoint side = {vx, -vy};
  const hsPoint along = square ? hsPoint{vy, vx} : hsPoint{0, 0};
  quad[0] = p0 + side - along;
  quad[1] = p1 + side + along;
  quad[2] = p1 - side + along;
  quad[3] = p0 - side - along;
  return true;
}

hsPath LinePath(const hsPoint& p0, const hsPoint& p1) {
  hsPath path;
  path.MoveTo(p0);
  path.LineTo(p1);
  return path;
}

hsPath QuadPath(const hsPoint points[4]) {
  hsPath path;
  path.AddPoly(4, points, true);
  return path;
}

// Half the area of the triangle, with a sign for its direction.
int64_t Turn(const hsPoint& a, const hsPoint& b, const hsPoint& c) {
  const auto half = [](hsScalar to, hsScalar from) { return (int64_t{to} - from) >> 1; };
  return half(b.fX, a.fX) * half(c.fY, a.fY) - half(b.fY, a.fY) * half(c.fX, a.fX);
}

bool SplitsByDiagonal(const hsPoint& from, const hsPoint& to, const hsPoint& one, const hsPoint& other) {
  const int64_t a = Turn(from, to, one), b = Turn(from, to, other);
  return (a >= 0 && b <= 0) || (a <= 0 && b >= 0);
}

// Each diagonal has the two other corners on its two sides.
bool IsConvexQuad(const hsPoint q[4]) {
  return SplitsByDiagonal(q[0], q[2], q[1], q[3]) && SplitsByDiagonal(q[1], q[3], q[0], q[2]);
}

}  // namespace

void hsGRawDraw::Check() const { hsThrowIfNilParam(fBitmap && fMatrix && fAttr ? this : nullptr); }

const hsRegion* hsGRawDraw::ClipOrBitmap(hsRegion* storage) const {
  if (fClip) return fClip;
  storage->SetRect(0, 0, int32_t(fBitmap->fWidth), int32_t(fBitmap->fHeight));
  return storage;
}

hsGBlitter* hsGRawDraw::GetBlitter(int32_t maskType) const {
  if (!fBitmap->fImage) return new hsGNullBlitter;
  return fAttr->GetBlitter(*fBitmap, maskType, *fMatrix);
}

hsPath hsGRawDraw::Stroked(const hsPath& path, hsScalar width) const {
  hsPath outline;
  HSScan::StrokePath(&path, width / 2, fAttr->MiterLimit(), fAttr->GetCapJoinStyle(), &outline);
  return outline;
}

void hsGRawDraw::DrawFull() {
  Check();
  const hsIntRect whole = {0, 0, int32_t(fBitmap->fWidth), int32_t(fBitmap->fHeight)};
  if (fBounder && fBounder->BoundRect(whole, fClip)) return;
  const auto blitter = hsAdopt(GetBlitter(kMask_Bit));
  HSScan::FillIRect(&whole, fClip, blitter.get());
}

void hsGRawDraw::DrawLine(const hsPoint& p0, const hsPoint& p1) {
  Check();
  if (HasPathEffects()) return DrawPath(LinePath(p0, p1));
  const hsScalar width = fAttr->GetStrokeWidth(fMatrix);
  if (width < 1) {
    hsPoint mapped[2] = {p0, p1};
    if (const uint32_t type = fMatrix->GetType()) fMatrix->MapPoints(2, mapped, mapped, type);
    if (fBounder) {
      hsRect bounds;
      bounds.Set(2, mapped);
      if (fBounder->BoundFixedRect(bounds, *fMatrix, fClip, nullptr, true)) return;
    }
    hsRegion storage;
    const auto blitter = hsAdopt(GetBlitter(kMask_Bit));
    return HSScan::HairLine(mapped[0], mapped[1], ClipOrBitmap(&storage), blitter.get());
  }
  if (fAttr->Cap() == hsGAttribute::kRoundCap)
    return DrawDevicePath(Stroked(LinePath(p0, p1), width), fAttr->Flags() & ~uint32_t{hsGAttribute::kFrame});
  hsPoint quad[4];
  if (LineQuad(p0, p1, width / 2, fAttr->Cap() == hsGAttribute::kSquareCap, quad)) DrawDeviceQuad(quad);
}

void hsGRawDraw::DrawRect(const hsRect& unsorted) {
  Check();
  const hsRect rect = Sorted(unsorted);
  if (HasPathEffects()) {
    hsPath path;
    path.AddRect(&rect);
    return DrawPath(path);
  }
  const uint32_t type = fMatrix->GetType();
  const bool frame = fAttr->Flags() & hsGAttribute::kFrame;
  const hsScalar width = fAttr->GetStrokeWidth(fMatrix);
  if (type <= (hsMatrix::kTranslateType | hsMatrix::kScaleType) && !fBounder && !fAttr->MaskFilter()) {
    hsRect mapped;
    fMatrix->MapRect(&rect, &mapped, type);
    return DrawDeviceRect(mapped, fAttr->Flags(), width);
  }
  hsPoint corners[4];
  rect.ToQuad(corners);
  if (!frame && !(type & hsMatrix::kPerspectiveType)) return DrawDeviceQuad(corners);
  const hsPath path = QuadPath(corners);
  if (frame && width > 0) return DrawDevicePath(Stroked(path, width), fAttr->Flags() & ~uint32_t{hsGAttribute::kFrame});
  DrawDevicePath(path, fAttr->Flags());
}

void hsGRawDraw::DrawDeviceRect(const hsRect& rect, uint32_t flags, hsScalar width) {
  hsRegion storage;
  const hsRegion* clip = ClipOrBitmap(&storage);
  const auto blitter = hsAdopt(GetBlitter(kMask_Bit));
  if (!(flags & hsGAttribute::kFrame))
    return HSScan::FillRect(&rect, clip, blitter.get(), flags & hsGAttribute::kGrowEmptyRects);
  if (width < 1) return HSScan::HairRect(&rect, clip, blitter.get());
  hsPoint size = {width, width};
  fMatrix->MapVectors(1, &size, &size);
  HSScan::FrameRect(&rect, int32_t(hsMagnitude32(size.fX)), int32_t(hsMagnitude32(size.fY)), clip, blitter.get());
}

void hsGRawDraw::DrawDeviceQuad(const hsPoint points[4]) {
  if (fBounder || fAttr->MaskFilter())
    return DrawDevicePath(QuadPath(points), fAttr->Flags() & ~uint32_t{hsGAttribute::kFrame});
  hsPoint mapped[4];
  fMatrix->MapPoints(4, points, mapped, hsMatrix::kUnknownType);
  hsRegion storage;
  const hsRegion* clip = ClipOrBitmap(&storage);
  const bool smooth = fAttr->Flags() & hsGAttribute::kAntiAlias;
  const auto blitter = hsAdopt(GetBlitter(smooth ? kMask_Alpha : kMask_Bit));
  if (smooth) {
    HSScan::AntiFillQuad(mapped, clip, blitter.get());
  } else {
    HSScan::FillQuad(mapped, clip, blitter.get());
  }
}

void hsGRawDraw::DrawPath(const hsPath& path) {
  Check();
  if (path.IsEmpty()) return;
  if (fAttr->PathEffect()) {
    hsGPathEffectApplier applier(fMatrix, fAttr);
    if (applier.Apply(path)) return DrawPath(applier.Path());
  }
  uint32_t flags = fAttr->Flags();
  const hsScalar width = fAttr->GetStrokeWidth(fMatrix);
  hsPath outline;
  const hsPath* drawn = &path;
  if (flags & hsGAttribute::kFrame && width > 0) {
    outline = Stroked(path, width);
    drawn = &outline;
    flags &= ~uint32_t{hsGAttribute::kFrame};
  }
  if (fAttr->Rasterizer()) return DrawRasterized(*drawn);
  DrawDevicePath(*drawn, flags);
}

void hsGRawDraw::DrawDevicePath(const hsPath& path, uint32_t flags) {
  hsPath mapped;
  const hsPath* device = &path;
  if (fMatrix->GetType()) {
    mapped.Transform(fMatrix, &path);
    device = &mapped;
  }
  const bool frame = flags & hsGAttribute::kFrame;
  hsGMaskFilter* filter = fAttr->MaskFilter();
  if (fBounder && fBounder->BoundPath(*device, *fMatrix, fClip, filter, frame)) return;
  hsRect rect;
  if (!filter && device->IsRect(&rect, false)) return DrawDeviceRect(rect, flags, 0);
  if (filter && !frame) return hsGMaskFilter::DrawPath(*this, *device, *fMatrix, filter);

  hsRegion storage;
  const hsRegion* clip = ClipOrBitmap(&storage);
  const bool smooth = !frame && flags & hsGAttribute::kAntiAlias;
  const auto blitter = hsAdopt(GetBlitter(smooth ? kMask_Alpha : kMask_Bit));
  if (frame) {
    HSScan::HairPath(device, clip, blitter.get());
  } else if (smooth) {
    HSScan::AntiFillPath(device, clip, blitter.get());
  } else {
    HSScan::FillPath(device, clip, blitter.get());
  }
}

void hsGRawDraw::DrawRasterized(const hsPath& path) {
  hsIntRect bounds;
  if (!fAttr->Rasterizer()->ComputeBounds(path, *fMatrix, &bounds)) return;
  if (fAttr->MaskFilter()) fAttr->MaskFilter()->ComputeBounds(*fMatrix, &bounds);
  if (fBounder && fBounder->BoundRect(bounds, fClip)) return;
  hsGMask mask;
  if (fAttr->Rasterizer()->Rasterize(path, *fMatrix, &mask)) DrawMask(mask);
}

void hsGRawDraw::DrawMask(const hsGMask& source) {
  Check();
  if (!source.fImage || source.fBounds.IsEmpty()) return;
  hsGMask filtered;
  hsGMaskFilter* filter = fAttr->MaskFilter();
  const hsGMask& mask = filter && filter->FilterMask(source, *fMatrix, &filtered) ? filtered : source;
  if (fBounder && fBounder->BoundRect(mask.fBounds, fClip)) return;

  // A mask that lies wholly inside needs no clip, and a mask of three coverages a pixel can't do with one.
  hsRegion storage;
  const hsRegion* clip = ClipOrBitmap(&storage);
  if (clip->Contains(mask.fBounds)) clip = nullptr;
  if (clip && !clip->Bounds().Intersects(mask.fBounds)) return;
  const auto blitter = hsAdopt(GetBlitter(mask.fMaskType));
  blitter->BlitMask(mask, clip);
}

hsGBlitter* hsGRawDraw::BitmapBlitter(const hsGBitmap& source, const hsMatrix& matrix) const {
  return fBitmap->fImage ? fAttr->GetBitmapBlitter(*fBitmap, kMask_Bit, source, matrix) : nullptr;
}

void hsGRawDraw::DrawBitmap(const hsGBitmap& bitmap, hsScalar x, hsScalar y) {
  Check();
  if (!bitmap.fImage || bitmap.fWidth == 0 || bitmap.fHeight == 0) return;
  hsMatrix placed, matrix;
  placed.SetTranslate(x, y);
  matrix.SetConcat(*fMatrix, placed);
  const uint32_t type = matrix.GetType();
  const hsRect source = {0, 0, hsIntToFixed(int32_t(bitmap.fWidth)), hsIntToFixed(int32_t(bitmap.fHeight))};
  hsRegion storage;
  const hsRegion* clip = ClipOrBitmap(&storage);
  if (type <= (hsMatrix::kTranslateType | hsMatrix::kScaleType)) {
    hsRect rect;
    matrix.MapRect(&source, &rect, type);
    if (fBounder && fBounder->BoundFixedRect(rect, matrix, fClip, nullptr, false)) return;
    const auto blitter = hsAdopt(BitmapBlitter(bitmap, matrix));
    if (!blitter) return;
    return HSScan::FillRect(&rect, clip, blitter.get(), false);
  }
  hsPoint corners[4];
  source.ToQuad(corners);
  matrix.MapPoints(4, corners, corners, type);
  const hsPath path = QuadPath(corners);
  if (fBounder && fBounder->BoundPath(path, matrix, fClip, nullptr, false)) return;
  const auto blitter = hsAdopt(BitmapBlitter(bitmap, matrix));
  if (!blitter) return;
  if (IsConvexQuad(corners)) {
    HSScan::FillQuad(corners, clip, blitter.get());
  } else {
    HSScan::FillPath(&path, clip, blitter.get());
  }
}

void hsGRawDraw::Erase(const hsGColor& color) {
  Check();
  const hsIntRect whole = {0, 0, int32_t(fBitmap->fWidth), int32_t(fBitmap->fHeight)};
  if (fBounder && fBounder->BoundRect(whole, nullptr)) return;
  hsGBitmap(*fBitmap).Erase(color);
}
