// Rectangles of pixels (hsIntRect) and of scalars (hsRect). Right and bottom are exclusive; Y grows downward.
//
// Nothing here keeps the edges in order, and Union doesn't look whether an operand is empty: it takes the outer
// value of each edge, also of a rectangle that holds nothing.
#pragma once

#include "gfx/foundation/hsfixed.h"
#include "gfx/foundation/hspoint.h"

struct hsIntRect {
  int32_t fLeft, fTop, fRight, fBottom;  // pixels

  constexpr bool operator==(const hsIntRect&) const = default;

  constexpr bool IsEmpty() const { return fLeft >= fRight || fTop >= fBottom; }
  constexpr int32_t Width() const { return hsWrapSub(fRight, fLeft); }
  constexpr int32_t Height() const { return hsWrapSub(fBottom, fTop); }
  constexpr int32_t CenterX() const { return hsFixedAverage(fLeft, fRight); }
  constexpr int32_t CenterY() const { return hsFixedAverage(fTop, fBottom); }

  void Set(int32_t left, int32_t top, int32_t right, int32_t bottom) { *this = {left, top, right, bottom}; }

  // Rectangles that only touch don't intersect.
  constexpr bool Intersects(const hsIntRect& r) const {
    return fLeft < r.fRight && fRight > r.fLeft && fTop < r.fBottom && fBottom > r.fTop;
  }
  constexpr bool Contains(const hsIntRect& r) const {
    return fLeft <= r.fLeft && fTop <= r.fTop && fRight >= r.fRight && fBottom >= r.fBottom;
  }
  constexpr bool Contains(int32_t x, int32_t y) const { return fLeft <= x && x < fRight && fTop <= y && y < fBottom; }

  // Shrinks this to what it shares with the other; false, and no change, when that is nothing.
  bool Intersect(const hsIntRect& r);
  bool Intersect(int32_t left, int32_t top, int32_t right, int32_t bottom);
  // The same into dst, which is a copy of r when nothing is shared.
  bool Intersect(const hsIntRect& r, hsIntRect* dst) const;
  void Union(const hsIntRect& r);
};

struct hsRect {
  hsScalar fLeft, fTop, fRight, fBottom;

  constexpr bool operator==(const hsRect&) const = default;

  constexpr bool IsEmpty() const { return fLeft >= fRight || fTop >= fBottom; }
  constexpr hsScalar Width() const { return hsWrapSub(fRight, fLeft); }
  constexpr hsScalar Height() const { return hsWrapSub(fBottom, fTop); }
  constexpr hsScalar CenterX() const { return hsFixedAverage(fLeft, fRight); }
  constexpr hsScalar CenterY() const { return hsFixedAverage(fTop, fBottom); }

  constexpr bool Contains(const hsRect& r) const {
    return fLeft <= r.fLeft && fTop <= r.fTop && fRight >= r.fRight && fBottom >= r.fBottom;
  }
  void Union(const hsRect& r);

  void Set(hsScalar left, hsScalar top, hsScalar right, hsScalar bottom) { *this = {left, top, right, bottom}; }
  // The bounds of the points; with a count of 0 or less, no change.
  void Set(int32_t count, const hsPoint points[]);
  void UnionPoints(int32_t count, const hsPoint points[]);

  // Clockwise from left-top.
  void ToQuad(hsPoint quad[4]) const;

  // To the nearest pixel edges.
  void Round(hsIntRect* out) const;
  // To the pixels touched.
  void RoundOut(hsIntRect* out) const;
};
