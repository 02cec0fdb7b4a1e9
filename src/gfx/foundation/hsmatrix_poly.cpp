// The map from one polygon to another, by way of a frame: the first point is the frame's origin, the second lies on its
// y axis, and the last on its x axis (of four points the third is the far corner). The frame's units are as long as
// the source polygon, not 1.0, so that the source's own matrix keeps all its bits.
#include "gfx/foundation/hsmatrix.h"
#include "gfx/foundation/hswide.h"

namespace {

struct Frame {
  hsFixed fX, fY;  // lengths of the sides; either may be negative, neither 0
};

bool MeasureFrame(const hsPoint poly[], int32_t count, Frame* frame) {
  const hsPoint side = poly[1] - poly[0];
  *frame = {kFixed1, hsMagnitude(side.fX, side.fY)};
  if (frame->fY == 0) return false;
  if (count == 2) return true;
  const hsPoint last = poly[count - 1] - poly[0];
  // The last point's distance from the side.
  frame->fX = hsWide().Mul(side.fY, last.fX).Sub(hsWide().Mul(side.fX, last.fY)).Div(frame->fY).AsLong();
  return frame->fX != 0;
}

void SetColumn(hsMatrix* matrix, int column, hsPoint vector, hsFixed length) {
  matrix->fMap[0][column] = hsFixDiv(vector.fX, length);
  matrix->fMap[1][column] = hsFixDiv(vector.fY, length);
}

// Solves g u + h v = s for g, dividing by the larger component of v. False when u and v are parallel.
bool SolveRatio(hsPoint u, hsPoint v, hsPoint s, hsFract* g) {
  if (v.fX == 0 && v.fY == 0) return false;
  hsFixed numer, denom;
  if (hsMagnitude32(v.fX) > hsMagnitude32(v.fY)) {
    numer = hsWrapSub(hsMulDiv(s.fX, v.fY, v.fX), s.fY);
    denom = hsWrapSub(hsMulDiv(u.fX, v.fY, v.fX), u.fY);
  } else {
    numer = hsWrapSub(s.fX, hsMulDiv(s.fY, v.fX, v.fY));
    denom = hsWrapSub(u.fX, hsMulDiv(u.fY, v.fX, v.fY));
  }
  if (denom == 0) return false;
  *g = hsFracDiv(numer, denom);
  return true;
}

// Columns and bottom row of the frame whose x and y axes end at px and py and whose far corner is far.
bool SetPerspective(hsPoint origin, hsPoint py, hsPoint far, hsPoint px, Frame frame, hsMatrix* matrix) {
  const hsPoint u = px - far, v = py - far, s = (far - px) - (py - origin);
  hsFract g, h;
  if (!SolveRatio(u, v, s, &g) || !SolveRatio(v, u, s, &h)) return false;
  // An axis ends at its point times 1 + its perspective, less the origin.
  const auto stretched = [origin](hsPoint p, hsFract by) {
    return p + hsPoint{hsFracMul(p.fX, by), hsFracMul(p.fY, by)} - origin;
  };
  SetColumn(matrix, 0, stretched(px, g), frame.fX);
  SetColumn(matrix, 1, stretched(py, h), frame.fY);
  matrix->fMap[2][0] = hsFixDiv(g, frame.fX);
  matrix->fMap[2][1] = hsFixDiv(h, frame.fY);
  return true;
}

bool FrameToPoly(const hsPoint poly[], int32_t count, Frame frame, hsMatrix* matrix) {
  const hsPoint side = poly[1] - poly[0];
  matrix->SetTranslate(poly[0].fX, poly[0].fY);
  if (count == 4) return SetPerspective(poly[0], poly[1], poly[2], poly[3], frame, matrix);
  SetColumn(matrix, 1, side, frame.fY);
  if (count == 3)
    SetColumn(matrix, 0, poly[2] - poly[0], frame.fX);
  else
    SetColumn(matrix, 0, {side.fY, hsWrapNeg(side.fX)}, frame.fY);
  return true;
}

}  // namespace

bool hsMatrix::SetPolyToPoly(const hsPoint src[], const hsPoint dst[], int32_t count) {
  if (count < 0 || count > 4) return false;
  if (count == 0) {
    Reset();
    return true;
  }
  if (count == 1) {
    const hsPoint by = dst[0] - src[0];
    SetTranslate(by.fX, by.fY);
    return true;
  }
  Frame frame;
  hsMatrix fromFrame, toFrame, toDst;
  if (!MeasureFrame(src, count, &frame) || !FrameToPoly(src, count, frame, &fromFrame)) return false;
  if (!fromFrame.Invert(&toFrame) || !FrameToPoly(dst, count, frame, &toDst)) return false;
  SetConcat(toDst, toFrame);
  return true;
}
