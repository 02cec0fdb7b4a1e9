// Lines and paths one pixel thick, whatever the scale.
#include <algorithm>

#include "gfx/foundation/hsclipline.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hsedge.h"
#include "gfx/vector/hsmonotone.h"
#include "gfx/vector/hspathiter.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/hsscan_clips.h"
#include "gfx/vector/hsscan_hair.h"

namespace {

// Passes on what lies within a clip of one kind.
template <typename Spans>
class ClippingBlitter : public hsGBlitter {
 public:
  explicit ClippingBlitter(const Spans& spans) : spans(spans) {}
  void BlitH(int32_t y, int32_t x, int32_t width) override {
    if (y >= spans.Bounds()->fTop && y < spans.Bounds()->fBottom) spans.Blit(y, x, x + width);
  }

 private:
  const Spans spans;
};

// The pixels around a line: a clip that holds them needn't be asked any more.
hsIntRect BoxOf(hsPoint p0, hsPoint p1) {
  const auto [left, right] = std::minmax({hsFixedRound(p0.fX), hsFixedRound(p1.fX)});
  const auto [top, bottom] = std::minmax({hsFixedRound(p0.fY), hsFixedRound(p1.fY)});
  return {left - 1, top - 1, right + 1, bottom + 1};
}

bool MakeRun(hsPoint p0, hsPoint p1, bool isSteep, hsHairRun* run) {
  hsScalar hsPoint::*const major = isSteep ? &hsPoint::fY : &hsPoint::fX;
  hsScalar hsPoint::*const minor = isSteep ? &hsPoint::fX : &hsPoint::fY;
  if (p0.*major > p1.*major) std::swap(p0, p1);
  const hsFixed centre = hsRowCentre(p0.*major >> 16);
  const int32_t stop = hsWrapAdd(p1.*major, 0xFFFF) >> 16;
  run->fIsSteep = isSteep;
  run->fFirst = centre >> 16;
  run->fCount = stop - run->fFirst;
  if (run->fCount <= 0) return false;
  run->fSlope = hsFixDiv(hsWrapSub(p1.*minor, p0.*minor), hsWrapSub(p1.*major, p0.*major));
  run->fMinor = hsWrapAdd(hsFixMul(run->fSlope, hsWrapSub(centre, p0.*major)), p0.*minor);
  return true;
}

// Over a long line the slope's last bit adds up, and the last pixel can stray beside the box. It is drawn, but never
// where the clip's bounds end.
void KeepInside(const hsIntRect& clip, hsHairRun* run) {
  const int32_t least = run->fIsSteep ? clip.fLeft : clip.fTop, end = run->fIsSteep ? clip.fRight : clip.fBottom;
  const auto isOut = [&](int32_t i) {
    const int32_t pixel = int32_t((run->fMinor + int64_t{run->fSlope} * i) >> 16);
    return pixel < least || pixel >= end;
  };
  while (run->fCount > 0 && isOut(run->fCount - 1)) --run->fCount;
}

void BlitRun(const hsHairRun& run, hsGBlitter* blitter) {
  hsFixed minor = run.fMinor;
  const int32_t end = run.fFirst + run.fCount;
  for (int32_t i = run.fFirst; i < end; ++i, minor = hsWrapAdd(minor, run.fSlope)) {
    if (run.fIsSteep)
      blitter->BlitH(i, minor >> 16, 1);
    else
      blitter->BlitH(minor >> 16, i, 1);
  }
}

// The pixels of a line along an axis: the end pixel belongs to the line that follows.
bool OrderedRounds(hsFixed a, hsFixed b, int32_t* from, int32_t* count) {
  const auto [first, end] = std::minmax({hsFixedRound(a), hsFixedRound(b)});
  *from = first;
  *count = end - first;
  return *count > 0;
}

// clip holds the line's box, or is null for a line that needs none.
void DrawLine(hsPoint p0, hsPoint p1, const hsIntRect* clip, hsGBlitter* blitter) {
  const uint32_t dx = hsMagnitude32(hsWrapSub(p1.fX, p0.fX)), dy = hsMagnitude32(hsWrapSub(p1.fY, p0.fY));
  int32_t from, count;
  if (dx == 0 && dy == 0) return blitter->BlitH(p0.fY >> 16, p0.fX >> 16, 1);
  if (dx == 0) {
    if (OrderedRounds(p0.fY, p1.fY, &from, &count)) blitter->BlitRect(from, p0.fX >> 16, 1, count);
    return;
  }
  if (dy == 0) {
    if (OrderedRounds(p0.fX, p1.fX, &from, &count)) blitter->BlitH(p0.fY >> 16, from, count);
    return;
  }
  hsHairRun run;
  if (!MakeRun(p0, p1, dx <= dy, &run)) return;
  if (clip) KeepInside(*clip, &run);
  if (run.fCount == 0) return;
  uint32_t value;
  if (const hsGBitmap* bitmap = blitter->GetDirectTarget(&value))
    hsStoreHairRun(*bitmap, value, run);
  else
    BlitRun(run, blitter);
}

void HairQuad(const hsPoint quad[3], const hsRegion* clip, hsGBlitter* blitter) {
  hsEdge edge;
  edge.SetQuad(quad);
  if (!hsAssert(edge.fCurveCount >= 1, "empty quad")) return;
  hsPoint from{edge.fCurveX, edge.fCurveY};
  // Unlike a filled curve this one takes its second difference shifted, so the middle is straighter than a fill's.
  edge.fDX2 >>= edge.fShift;
  edge.fDY2 >>= edge.fShift;
  while (edge.fCurveCount > 0) {
    const hsPoint to = edge.NextQuadPoint(from);
    HSScan::HairLine(from, to, clip, blitter);
    from = to;
  }
}

void HairCubic(const hsPoint cubic[4], const hsRegion* clip, hsGBlitter* blitter) {
  hsEdge edge;
  edge.SetCubic(cubic);
  if (!hsAssert(edge.fCurveCount < 0, "empty cubic")) return;
  hsPoint from{edge.fCurveX, edge.fCurveY};
  while (edge.fCurveCount < 0) {
    const hsPoint to = edge.NextCubicPoint(from);
    HSScan::HairLine(from, to, clip, blitter);
    from = to;
  }
}

// A region's rectangle in the numbers of a line, as far as they reach.
hsRect FixedBounds(const hsRegion& region) {
  const auto fixed = [](int32_t pixel) { return hsIntToFixed(std::clamp(pixel, -0x7FFF, 0x7FFF)); };
  const hsIntRect& r = region.Bounds();
  return {fixed(r.fLeft), fixed(r.fTop), fixed(r.fRight), fixed(r.fBottom)};
}

}  // namespace

void HSScan::HairLine(const hsPoint& p0, const hsPoint& p1, const hsRegion* clip, hsGBlitter* blitter) {
  if (!clip) return DrawLine(p0, p1, nullptr, blitter);
  if (clip->IsEmpty()) return;
  if (clip->Contains(BoxOf(p0, p1))) return DrawLine(p0, p1, &clip->Bounds(), blitter);
  hsPoint ends[2];
  if (!hsClipLine::ClipLine(p0, p1, FixedBounds(*clip), ends)) return;
  if (clip->IsRect()) {
    ClippingBlitter<hsSpansInRect<hsGBlitter>> clipping({blitter, clip->Bounds()});
    DrawLine(ends[0], ends[1], nullptr, &clipping);
  } else {
    ClippingBlitter<hsSpansInRegion<hsGBlitter>> clipping({blitter, *clip});
    DrawLine(ends[0], ends[1], nullptr, &clipping);
  }
}

void HSScan::HairPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter) {
  hsThrowIfNilParam(path);
  hsThrowIfNilParam(blitter);
  if (clip && clip->IsEmpty()) return;
  hsPathIter iter(*path, false);
  hsPoint pts[4], pieces[10];
  for (hsPath::Verb verb; (verb = iter.Next(pts)) != hsPath::kDoneVerb;) {
    if (verb == hsPath::kLineVerb) {
      HairLine(pts[0], pts[1], clip, blitter);
    } else if (verb == hsPath::kQuadVerb) {
      const int32_t count = hsChopQuadMonotone(pts, pieces);
      for (int32_t i = 0; i < count; ++i) HairQuad(pieces + 2 * i, clip, blitter);
    } else if (verb == hsPath::kCurveVerb) {
      const int32_t count = hsChopCubicMonotone(pts, pieces);
      for (int32_t i = 0; i < count; ++i) HairCubic(pieces + 3 * i, clip, blitter);
    }
  }
}
