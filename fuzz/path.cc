// Paths by random operations, filled, outlined and stroked under a clip, beside plain geometry in doubles.
//
// Points lie on the model's pixels, where what is drawn is compared, or anywhere, where it must stay within the clip.
#include <array>
#include <cstdlib>
#include <vector>

#include "choices.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmatrix.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/scanmodel.h"

namespace {

constexpr int kMostPoints = 120;
// How far off an outline a pixel may be wrong: lines are exact but for a slope's last bits, curves are a few lines.
constexpr double kNearLine = 0.05, kNearCurve = 2;

void check(bool holds) {
  if (!holds) std::abort();
}

// Spans that leave the clip, or are empty, fail. Coverage is read to its end.
struct ClippedBlitter : hsGBlitter {
  explicit ClippedBlitter(const PixelModel& c) : clip(c) {}

  void BlitH(int32_t y, int32_t x, int32_t width) override {
    check(width > 0 && y >= 0 && y < kModelSize && x >= 0 && x + width <= kModelSize);
    const uint64_t span = PixelModel::Span(x, x + width);
    uint64_t touched = span, whole = span;
    for (int i = 0; fAlpha && i < width; ++i) {
      if (fAlpha[i] == 0) touched &= ~(uint64_t{1} << (x + i));
      if (fAlpha[i] != 255) whole &= ~(uint64_t{1} << (x + i));
    }
    check((span & ~clip.rows[size_t(y)]) == 0);
    drawn.rows[size_t(y)] |= touched;
    full.rows[size_t(y)] |= whole;
  }

  const PixelModel& clip;
  PixelModel drawn, full;
};

struct Mirror : hsPointMapper {
  void MapPoints(int32_t count, const hsPoint src[], hsPoint dst[]) const override {
    for (int32_t i = 0; i < count; ++i) dst[i] = {src[i].fY, src[i].fX};
  }
};

// Pixels of a bitmap that drawing may store into by itself.
struct DirectBlitter : ClippedBlitter {
  explicit DirectBlitter(const PixelModel& c) : ClippedBlitter(c), pixels(size_t{kModelSize} * kModelSize) {
    bitmap.SetConfig(hsGBitmap::kConfig_Index8);
    bitmap.fWidth = bitmap.fHeight = kModelSize;
    bitmap.fRowBytes = kModelSize;
    bitmap.fImage = pixels.data();
  }
  const hsGBitmap* GetDirectTarget(uint32_t* value) override { return *value = 1, &bitmap; }

  // What was drawn either way.
  PixelModel all() const {
    PixelModel found = drawn;
    for (int i = 0; i < kModelSize * kModelSize; ++i)
      if (pixels[size_t(i)]) found.Fill({i % kModelSize, i / kModelSize, i % kModelSize + 1, i / kModelSize + 1});
    return found;
  }

  std::vector<uint8_t> pixels;
  hsGBitmap bitmap;
};

class PathMaker {
 public:
  explicit PathMaker(Choices& c) : choices(c), isWild(c.oneIn(4)) {}

  hsPath path() {
    hsPath made(choices.below(2));
    for (uint32_t steps = 1 + choices.below(12); steps > 0 && made.CountPoints() < kMostPoints; --steps) add(made);
    return made;
  }
  bool wild() const { return isWild; }
  hsPoint point() {
    const hsScalar x = coordinate();
    return {x, coordinate()};
  }
  hsRect rect() { return {coordinate(), coordinate(), coordinate(), coordinate()}; }
  hsScalar coordinate() {
    if (isWild) return choices.below(2) ? hsScalar(choices.word()) : hsScalar(choices.byte()) << 18;
    return hsScalar(choices.below(kModelSize)) << 16 | (choices.below(4) == 0 ? choices.below(256) << 8 : 0);
  }

 private:
  void add(hsPath& path) {
    switch (choices.below(16)) {
      case 0:
      case 1: path.MoveTo(point()); break;
      case 2:
      case 3:
      case 4: path.LineTo(point()); break;
      case 5: {
        const hsPoint a = point();
        path.QuadTo(a, point());
        break;
      }
      case 6: {
        const hsPoint a = point(), b = point();
        path.CurveTo(a, b, point());
        break;
      }
      case 7: path.Close(); break;
      case 8: addShape(path); break;
      case 9: addOutline(path); break;
      case 10: change(path); break;
      case 11: {
        const hsPoint by = point();
        path.RLineTo(by.fX / 8, by.fY / 8);
        break;
      }
      case 12: {
        const hsPoint to = point();
        path.SetLastPoint(to.fX, to.fY);
        break;
      }
      case 13: addOf(path); break;
      default: path.LineTo(point());
    }
  }

  void addShape(hsPath& path) {
    const hsRect r = rect();
    switch (choices.below(6)) {
      case 0: path.AddRect(&r, choices.below(2)); break;
      case 1: path.AddOval(&r, choices.below(2)); break;
      case 2: path.AddCircle(r.fLeft, r.fTop, r.fRight / 4); break;
      case 3: path.AddRoundRect(&r, r.fLeft / 4, r.fTop / 4); break;
      case 4:
        path.AddArc(&r, hsFixed(choices.byte()) << 18, hsFixed(choices.byte() - 128) << 18, choices.below(2));
        break;
      default: {
        const std::array<hsPoint, 3> points{point(), point(), point()};
        path.AddPoly(int32_t(choices.below(4)), points.data(), choices.below(2));
      }
    }
  }

  // As fonts store it.
  void addOutline(hsPath& path) {
    std::array<hsPoint, 6> points;
    std::array<uint8_t, 6> onCurve;
    for (hsPoint& p : points) p = point();
    for (uint8_t& on : onCurve) on = uint8_t(choices.below(2));
    path.AddContourWithOnCurveFlags(int32_t(choices.below(7)), points.data(), onCurve.data(), choices.below(2));
  }

  void addOf(hsPath& path) {
    hsPath other;
    other.MoveTo(point());
    for (uint32_t lines = choices.below(3); lines > 0; --lines) other.LineTo(point());
    const hsPoint control = point();
    if (choices.below(2)) other.QuadTo(control, point());
    if (choices.below(2)) other.Close();
    switch (choices.below(4)) {
      case 0: path.AddPath(other); break;
      case 1: path.AddPath(path); break;
      case 2: path.AddForward(other); break;
      default: path.AddReverse(other);
    }
  }

  void change(hsPath& path) {
    switch (choices.below(5)) {
      case 0: path.Subdivide(int32_t(choices.below(5))); break;
      case 1: path.SubdivideToTolerance(hsScalar(choices.byte()) << 12, int32_t(choices.below(5))); break;
      case 2: {
        const hsPath whole = path;
        path.Offset(kFixed1 / 4, kFixed1 / 8);
        if (choices.below(2)) path.Offset(0, 0, &whole);
        break;
      }
      case 3: {
        hsMatrix matrix;
        matrix.SetRotate(hsFixed(choices.byte()) << 17, 32 * kFixed1, 32 * kFixed1);
        if (isWild && choices.below(2)) matrix.fMap[2][0] = int32_t(choices.word());
        const Mirror mirror;
        choices.below(2) ? path.Transform(&mirror) : path.Transform(&matrix);
        break;
      }
      default: path.Rewind();
    }
  }

  Choices& choices;
  const bool isWild;  // points are anywhere
};

// Each contour alone, by the iterator, which must have all points.
void walk(const hsPath& path) {
  hsPathIter iter(path, false);
  int32_t points = 0;
  hsPath contour;
  for (bool isClosed = iter.IsClosedContour(); iter.NextContour(&contour); isClosed = iter.IsClosedContour()) {
    points += contour.CountPoints();
    check(isClosed == hsPathIter(contour, false).IsClosedContour());
  }
  check(points <= path.CountPoints());
}

// What a path answers about itself.
void ask(const hsPath& path) {
  std::vector<char> flat(size_t(path.Flatten(nullptr)));
  check(path.Flatten(flat.data()) == int32_t(flat.size()));
  const void* cursor = flat.data();
  hsPath again;
  again.Unflatten(&cursor);
  check(again == path && cursor == flat.data() + flat.size());

  hsRect all, exact, rect;
  path.ComputeBounds(&all, false);
  path.ComputeBounds(&exact, true);
  path.IsRect(&rect, true);
  path.IsRect(nullptr, false);
  path.GetSegmentMask();
  hsPoint p;
  path.GetFirstPoint(&p);
  path.GetLastPoint(&p);
  for (int32_t i = 0; i <= path.CountPoints(); ++i) check(path.GetPoint(i, &p) == (i < path.CountPoints()));
  walk(path);
  for (const bool close : {false, true}) path.CountFirstContourSegments(close);
}

// Of a few rows every pixel must be right that isn't near the outline.
void compare(const hsPath& path, const PixelModel& clip, const ClippedBlitter& plain, const ClippedBlitter& smooth) {
  constexpr uint32_t kCurves = hsPath::kQuadMask | hsPath::kCurveMask;
  const Outline outline(path, true);
  const double near = path.GetSegmentMask() & kCurves ? kNearCurve : kNearLine;
  for (int y = 3; y < kModelSize; y += 19)
    for (int x = 0; x < kModelSize; ++x) {
      if (!clip.At(x, y)) continue;
      const bool inside = outline.Contains(CentreOf(x, y));
      if (plain.drawn.At(x, y) != inside) check(outline.DistanceTo(CentreOf(x, y)) < near);
      if (inside ? !smooth.full.At(x, y) : smooth.drawn.At(x, y)) check(outline.DistanceTo(CentreOf(x, y)) < near + 1);
    }
}

template <class Draw>
ClippedBlitter drawn(const PixelModel& clip, Draw&& draw) {
  ClippedBlitter blitter(clip);
  try {
    draw(&blitter);
  } catch (const hsException&) {  // a number that leaves its range
  }
  check(!blitter.fAlpha);
  return blitter;
}

void drawPath(const hsPath& path, bool isWild, const hsRegion& clip, const PixelModel& pixels, Choices& choices) {
  const ClippedBlitter plain = drawn(pixels, [&](hsGBlitter* b) { HSScan::FillPath(&path, &clip, b); });
  const ClippedBlitter smooth = drawn(pixels, [&](hsGBlitter* b) { HSScan::AntiFillPath(&path, &clip, b); });
  if (!isWild) compare(path, pixels, plain, smooth);
  const ClippedBlitter hair = drawn(pixels, [&](hsGBlitter* b) { HSScan::HairPath(&path, &clip, b); });
  DirectBlitter direct(pixels);
  bool isWhole = true;
  try {
    HSScan::HairPath(&path, &clip, &direct);
  } catch (const hsException&) {
    isWhole = false;
  }
  if (isWhole) check(direct.all() == hair.drawn);

  hsPath stroke;
  const hsFixed radius = hsFixed(choices.byte()) << 11, limit = hsFixed(choices.byte()) << 11;
  drawn(pixels, [&](hsGBlitter* b) {
    HSScan::StrokePath(&path, radius, limit, choices.below(16), &stroke);
    HSScan::FillPath(&stroke, &clip, b);
  });
}

void drawShapes(PathMaker& maker, const hsRegion& clip, const PixelModel& pixels, Choices& choices) {
  const std::array<hsPoint, 4> corners{maker.point(), maker.point(), maker.point(), maker.point()};
  drawn(pixels, [&](hsGBlitter* b) { HSScan::FillQuad(corners.data(), &clip, b); });
  drawn(pixels, [&](hsGBlitter* b) { HSScan::AntiFillQuad(corners.data(), &clip, b); });
  drawn(pixels, [&](hsGBlitter* b) { HSScan::HairLine(corners[0], corners[1], &clip, b); });
  const hsRect r = maker.rect();
  drawn(pixels, [&](hsGBlitter* b) { HSScan::FillRect(&r, &clip, b, choices.below(2)); });
  drawn(pixels, [&](hsGBlitter* b) { HSScan::FrameRect(&r, kFixed1 * 3 / 2, kFixed1, &clip, b); });
  drawn(pixels, [&](hsGBlitter* b) { HSScan::HairRect(&r, &clip, b); });
  drawn(pixels, [&](hsGBlitter* b) { HSScan::FrameRect(&r, -kFixed1, kFixed1, &clip, b); });
  const hsIntRect within{5, 6, 7, 9};
  PixelModel whole;
  whole.Fill(within);
  check(drawn(whole, [&](hsGBlitter* b) { HSScan::FillIRect(&within, nullptr, b); }).drawn == whole);
}

// Nothing, a rectangle, or what is left of one when another is taken out.
PixelModel clipOf(Choices& choices) {
  PixelModel pixels;
  if (choices.oneIn(8)) return pixels;
  const int left = int(choices.below(16)), top = int(choices.below(16));
  pixels.Fill({left, top, kModelSize - left / 2, kModelSize - top / 2});
  if (choices.below(2)) pixels.Fill({left + 8, top + 6, 48, 40}, false);
  return pixels;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  hsSetHaltProc([] {});  // numbers that leave their range are reported
  Choices choices(data, size);
  PathMaker maker(choices);
  try {
    const hsPath path = maker.path();
    ask(path);
    const PixelModel pixels = clipOf(choices);
    const hsRegion clip = pixels.Region();
    drawPath(path, maker.wild(), clip, pixels, choices);
    drawShapes(maker, clip, pixels, choices);
  } catch (const hsException&) {  // a coordinate that is none
  }
  return 0;
}
