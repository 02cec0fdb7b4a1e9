#include "gfx/vector/hspathiter.h"

#include <algorithm>

void hsPathIter::Reset(const hsPath* path, bool forceClose) {
  fPath = path;
  fPoint = path ? path->fPoints.begin() : nullptr;
  fVerb = path ? path->fVerbs.begin() : nullptr;
  fVerbEnd = path ? path->fVerbs.end() : nullptr;
  fMoveTo = fLastPt = {0, 0};
  fForceClose = forceClose;
  fLastVerb = hsPath::kDoneVerb;
}

bool hsPathIter::AutoClose(hsPoint pts[2], bool isCloseVerb) {
  if (fLastVerb == hsPath::kDoneVerb || fLastPt == fMoveTo) return false;
  if (!isCloseVerb && !fForceClose) return false;
  pts[0] = fLastPt;
  pts[1] = fLastPt = fMoveTo;
  return true;
}

template <int32_t count>
void hsPathIter::Segment(hsPoint pts[]) {
  pts[0] = fLastPt;
  std::copy_n(fPoint, count, pts + 1);
  fPoint += count;
  fLastPt = pts[count];
}

hsPath::Verb hsPathIter::Next(hsPoint pts[4]) {
  hsPoint unwanted[4];
  if (!pts) pts = unwanted;
  if (!fPath) return hsPath::kDoneVerb;
  if (fVerb == fVerbEnd) {
    const bool closing = AutoClose(pts, false);
    fLastVerb = hsPath::kDoneVerb;
    return closing ? hsPath::kLineVerb : hsPath::kDoneVerb;
  }
  const hsPath::Verb verb = hsPath::Verb(*fVerb);
  switch (verb) {
    case hsPath::kMoveVerb:
      if (AutoClose(pts, false)) return fLastVerb = hsPath::kLineVerb;  // the move is read again
      pts[0] = fMoveTo = fLastPt = *fPoint++;
      break;
    case hsPath::kLineVerb: Segment<1>(pts); break;
    case hsPath::kQuadVerb: Segment<2>(pts); break;
    case hsPath::kCurveVerb: Segment<3>(pts); break;
    case hsPath::kCloseVerb:
      if (AutoClose(pts, true)) return fLastVerb = hsPath::kLineVerb;  // the close is read again
      break;
    default: hsAssert(false, "bad verb"); hsThrow(hsException::kGeneric, 0);
  }
  ++fVerb;
  return fLastVerb = verb;
}

bool hsPathIter::NextContour(hsPath* dst) {
  for (; fVerb != fVerbEnd && *fVerb != hsPath::kMoveVerb; ++fVerb) fPoint += hsPointsOfVerb(*fVerb);
  if (fVerb == fVerbEnd) return false;
  if (dst) {
    dst->Rewind();
    dst->MoveTo(*fPoint);
  }
  ++fVerb;
  ++fPoint;
  while (fVerb != fVerbEnd && *fVerb != hsPath::kMoveVerb) {
    const hsPath::Verb verb = hsPath::Verb(*fVerb++);
    if (dst) dst->AddSegment(verb, fPoint);
    fPoint += hsPointsOfVerb(verb);
    if (verb == hsPath::kCloseVerb) break;
  }
  return true;
}

bool hsPathIter::IsClosedContour() const {
  const uint8_t* verb = fVerb;
  if (verb != fVerbEnd && *verb == hsPath::kMoveVerb) ++verb;
  for (; verb != fVerbEnd && *verb != hsPath::kMoveVerb; ++verb)
    if (*verb == hsPath::kCloseVerb) return true;
  return false;
}
