// Cutting the segments of a path into more of them.
#include <algorithm>

#include "gfx/foundation/hscubic.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hspathiter.h"

namespace {

constexpr int32_t kMaxLevel = 4;

void HalveQuad(const hsPoint p[3], hsPoint halves[5]) {
  halves[0] = p[0];
  halves[1] = hsMidPoint(p[0], p[1]);
  halves[3] = hsMidPoint(p[1], p[2]);
  halves[2] = hsMidPoint(halves[1], halves[3]);
  halves[4] = p[2];
}

void HalveCubic(const hsPoint p[4], hsPoint halves[7]) {
  const hsPoint middle = hsMidPoint(p[1], p[2]);
  halves[0] = p[0];
  halves[1] = hsMidPoint(p[0], p[1]);
  halves[2] = hsMidPoint(halves[1], middle);
  halves[5] = hsMidPoint(p[2], p[3]);
  halves[4] = hsMidPoint(middle, halves[5]);
  halves[3] = hsMidPoint(halves[2], halves[4]);
  halves[6] = p[3];
}

// The cubic of a line, its control points at thirds.
void LineToCubic(hsPoint start, hsPoint end, hsPoint cubic[4]) {
  const hsPoint way = end - start, step{way.fX / 3, way.fY / 3};
  cubic[0] = start;
  cubic[1] = start + step;
  cubic[2] = cubic[1] + step;
  cubic[3] = end;
}

bool IsFar(hsPoint a, hsPoint b, hsScalar tolerance) {
  const hsPoint way = b - a;
  return hsMagnitude(way.fX, way.fY) > tolerance;
}

void AddQuads(hsPath* path, const hsPoint p[3], int32_t level) {
  if (level <= 0) return path->QuadTo(p[1], p[2]);
  hsPoint halves[5];
  HalveQuad(p, halves);
  AddQuads(path, halves, level - 1);
  AddQuads(path, halves + 2, level - 1);
}

void AddCubics(hsPath* path, const hsPoint p[4], int32_t level) {
  if (level <= 0) return path->CurveTo(p[1], p[2], p[3]);
  hsPoint halves[7];
  HalveCubic(p, halves);
  AddCubics(path, halves, level - 1);
  AddCubics(path, halves + 3, level - 1);
}

void AddQuadsWithin(hsPath* path, const hsPoint p[3], hsScalar tolerance, int32_t depth) {
  if (depth <= 0 || !IsFar(p[0], p[1], tolerance)) return path->QuadTo(p[1], p[2]);
  hsPoint halves[5];
  HalveQuad(p, halves);
  AddQuadsWithin(path, halves, tolerance, depth - 1);
  AddQuadsWithin(path, halves + 2, tolerance, depth - 1);
}

void AddCubicWithin(hsPath* path, const hsPoint p[4], hsScalar tolerance, int32_t depth) {
  if (depth > 0 && (IsFar(p[0], p[1], tolerance) || IsFar(p[1], p[2], tolerance) || IsFar(p[0], p[2], tolerance))) {
    hsPoint halves[7];
    hsCubic::ChopCubicAt(p, halves, 0);  // reports "bad t": cubics have never been cut here
  }
  path->CurveTo(p[1], p[2], p[3]);
}

// Builds the path anew: lines come to addCubic as cubics, with true.
template <typename AddQuad, typename AddCubic>
void Rebuild(hsPath* path, AddQuad addQuad, AddCubic addCubic) {
  const hsPath before = *path;
  path->Rewind();
  hsPathIter iter(before, false);
  hsPoint pts[4], cubic[4];
  for (hsPath::Verb verb; (verb = iter.Next(pts)) != hsPath::kDoneVerb;) {
    switch (verb) {
      case hsPath::kMoveVerb: path->MoveTo(pts[0]); break;
      case hsPath::kLineVerb:
        LineToCubic(pts[0], pts[1], cubic);
        addCubic(cubic, true);
        break;
      case hsPath::kQuadVerb: addQuad(pts); break;
      case hsPath::kCurveVerb: addCubic(pts, false); break;
      default: path->Close(); break;
    }
  }
}

}  // namespace

void hsPath::Subdivide(int32_t level) {
  if (level <= 0) return;
  level = std::min(level, kMaxLevel);
  Rebuild(
      this, [&](const hsPoint p[3]) { AddQuads(this, p, level); },
      [&](const hsPoint p[4], bool isLine) { AddCubics(this, p, isLine ? level - 1 : level); });
}

void hsPath::SubdivideToTolerance(hsScalar tolerance, int32_t maxDepth) {
  Rebuild(
      this, [&](const hsPoint p[3]) { AddQuadsWithin(this, p, tolerance, maxDepth); },
      [&](const hsPoint p[4], bool) { AddCubicWithin(this, p, tolerance, maxDepth); });
}
