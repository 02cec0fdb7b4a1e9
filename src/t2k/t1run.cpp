// The machine that runs Type 1 glyph programs into outlines.
//
// Operators take their values from the bottom of the stack, and the stack keeps what it held when its depth sinks:
// `pop` brings the value that lies there back up, which is how flex and blend results return. A program with too
// few values thus works on old ones; it can't leave the stack's 32 places.
#include <algorithm>
#include <iterator>

#include "gfx/foundation/hsfixed.h"
#include "t2k/t1.h"

namespace {

constexpr int kMaxSubrDepth = 10;

enum Operator : uint8_t {
  kHstem = 1,
  kVstem = 3,
  kVmoveto = 4,
  kRlineto = 5,
  kHlineto = 6,
  kVlineto = 7,
  kRrcurveto = 8,
  kClosepath = 9,
  kCallsubr = 10,
  kReturn = 11,
  kEscape = 12,
  kHsbw = 13,
  kEndchar = 14,
  kRmoveto = 21,
  kHmoveto = 22,
  kVhcurveto = 30,
  kHvcurveto = 31,
};

enum EscapedOperator : uint8_t {
  kDotsection = 0,
  kVstem3 = 1,
  kHstem3 = 2,
  kSeac = 6,
  kSbw = 7,
  kDiv = 12,
  kCallothersubr = 16,
  kPop = 17,
  kSetcurrentpoint = 33,
};

enum OtherSubr : int32_t {
  kFlexEnd = 0,
  kFlexStart = 1,
  kFlexPoint = 2,
  kHintReplacement = 3,
  kCounters1 = 12,
  kCounters2 = 13,
  kBlendFirst = 14,
  kBlendLast = 18,
};

constexpr int kBlendResults[] = {1, 2, 3, 4, 6};

void ClearStack(T1Class* t) { t->gNumStackValues = 0; }

void CutStack(T1Class* t, int32_t values) {
  t->gNumStackValues = values < 0 || values > t->gNumStackValues ? 0 : t->gNumStackValues - values;
}

void Push(T1Class* t, int32_t value) {
  if (t->gNumStackValues < kMaxStackValues) t->stackValues[t->gNumStackValues++] = value;
}

int32_t PopValue(T1Class* t) { return t->gNumStackValues > 0 ? t->stackValues[--t->gNumStackValues] : 0; }

void AddPoint(T1Class* t, bool onCurve) {
  GlyphClass* glyph = t->glyph;
  if (glyph->pointCount >= glyph->pointCountMax) {
    const int grown = glyph->pointCountMax + glyph->pointCountMax / 2 + 32;
    const bool atLimit = glyph->pointCount >= kMaxGlyphPoints;
    ReservePoints(glyph, atLimit || grown < kMaxGlyphPoints ? grown : kMaxGlyphPoints);
  }
  const int at = glyph->pointCount++;
  glyph->oox[at] = int16_t(t->x);
  glyph->ooy[at] = int16_t(t->y);
  glyph->onCurve[at] = onCurve;
}

void Move(T1Class* t, int32_t dx, int32_t dy) {
  t->x = hsWrapAdd(t->x, dx);
  t->y = hsWrapAdd(t->y, dy);
}

void MoveAndAdd(T1Class* t, int32_t dx, int32_t dy, bool onCurve) {
  Move(t, dx, dy);
  AddPoint(t, onCurve);
}

// Opens a contour at the current point, unless one is open.
void StartContour(T1Class* t) {
  if (t->contourOpen) return;
  GlyphClass* glyph = t->glyph;
  if (glyph->contourCount >= glyph->contourCountMax) {
    ReserveContours(glyph, glyph->contourCountMax + glyph->contourCountMax / 2 + 8);
  }
  glyph->sp[glyph->contourCount] = glyph->pointCount;
  t->contourOpen = true;
  AddPoint(t, true);
}

void CloseContour(T1Class* t) {
  if (!t->contourOpen) return;
  GlyphClass* glyph = t->glyph;
  glyph->ep[glyph->contourCount++] = int16_t(glyph->pointCount - 1);
  t->contourOpen = false;
}

void LineTo(T1Class* t, int32_t dx, int32_t dy) {
  StartContour(t);
  MoveAndAdd(t, dx, dy, true);
  ClearStack(t);
}

void CurveTo(T1Class* t, int32_t dx1, int32_t dy1, int32_t dx2, int32_t dy2, int32_t dx3, int32_t dy3) {
  StartContour(t);
  MoveAndAdd(t, dx1, dy1, false);
  MoveAndAdd(t, dx2, dy2, false);
  MoveAndAdd(t, dx3, dy3, true);
  ClearStack(t);
}

void MoveTo(T1Class* t, int32_t dx, int32_t dy) {
  Move(t, dx, dy);
  ClearStack(t);
}

void SetBearingAndWidth(T1Class* t, int32_t lsbx, int32_t lsby, int32_t awx, int32_t awy) {
  t->x = t->lsbx = lsbx;
  t->y = t->lsby = lsby;
  t->awx = awx;
  t->awy = awy;
  ClearStack(t);
}

uint16_t IndexOfAdobeCode(const T1Class* t, int32_t code) {
  for (int i = 0; i < t->NumCharStrings; ++i) {
    if (t->adobeCode[i] == code) return uint16_t(i);
  }
  return 0;
}

// An accented character: a composite of two glyphs, the accent placed by its own side bearing.
void ComposeAccent(T1Class* t) {
  const int32_t asb = t->stackValues[0], adx = t->stackValues[1], ady = t->stackValues[2];
  const uint16_t base = IndexOfAdobeCode(t, t->stackValues[3]);
  const uint16_t accent = IndexOfAdobeCode(t, t->stackValues[4]);
  const int32_t dx = hsWrapSub(hsWrapAdd(t->lsbx, adx), asb);
  constexpr uint16_t kPlaced = kArgsAreWords | kArgsAreOffset | kRoundOffset;
  const uint16_t words[] = {kPlaced | kMoreComponents, base, 0, 0, kPlaced, accent, uint16_t(dx), uint16_t(ady)};
  GlyphClass* glyph = t->glyph;
  tsi_DeAllocMem(t->mem, glyph->componentData);
  glyph->componentData = nullptr;
  glyph->componentData = tsi_NewArray<uint16_t>(t->mem, std::size(words));
  std::memcpy(glyph->componentData, words, sizeof words);
  glyph->componentSize = glyph->componentMax = int(std::size(words));
}

void AddFlexPoint(T1Class* t) {
  if (!t->flexOn) return;
  // The point counted 0 is only the reference that the others are relative to.
  if (t->flexCount >= 1 && t->flexCount <= 6) AddPoint(t, t->flexCount % 3 == 0);
  t->flexCount++;
}

// Base values first, then for each of them its deltas, one a master beyond the first. Results take the place of the
// base values, above the depth that is left.
void Blend(T1Class* t, int results, int32_t count) {
  tsi_Assert(t->mem, count == t->numMasters * results && count <= t->gNumStackValues);
  CutStack(t, count);
  int32_t* base = t->stackValues + t->gNumStackValues;
  const int32_t* delta = base + results;
  for (int i = 0; i < results; ++i) {
    for (int master = 1; master < t->numMasters; ++master) {
      base[i] = hsWrapAdd(base[i], hsFixMulSat(*delta++, t->WeightVector[master]));
    }
  }
}

void CallOtherSubr(T1Class* t) {
  const int32_t number = PopValue(t);
  const int32_t count = PopValue(t);
  switch (number) {
    case kFlexEnd:
      t->flexOn = false;
      CutStack(t, 2);
      return;
    case kFlexStart:
      t->flexOn = true;
      t->flexCount = 0;
      StartContour(t);
      return;
    case kFlexPoint: AddFlexPoint(t); return;
    case kHintReplacement: CutStack(t, count); return;
    case kCounters1:
    case kCounters2: ClearStack(t); return;
    default: break;
  }
  tsi_Assert(t->mem, number >= kBlendFirst && number <= kBlendLast);
  Blend(t, kBlendResults[number - kBlendFirst], count);
}

void Divide(T1Class* t) {
  const int32_t divisor = PopValue(t);
  const int32_t dividend = PopValue(t);
  Push(t, divisor ? int32_t(int64_t{dividend} / divisor) : 0);
}

void RunEscaped(T1Class* t, uint8_t code) {
  const int32_t* v = t->stackValues;
  switch (code) {
    case kSeac: ComposeAccent(t); break;
    case kSbw: SetBearingAndWidth(t, v[0], v[1], v[2], v[3]); return;
    case kDiv: Divide(t); return;
    case kCallothersubr: CallOtherSubr(t); return;
    case kPop:
      if (t->gNumStackValues < kMaxStackValues) t->gNumStackValues++;
      return;
    case kSetcurrentpoint: StartContour(t); break;
    default: break;  // dotsection, the stem triples, and what isn't known
  }
  ClearStack(t);
}

// Bytes of a program, 0 beyond its end.
struct ProgramReader {
  const uint8_t* at;
  const uint8_t* end;

  bool AtEnd() const { return at >= end; }
  uint8_t Next() { return AtEnd() ? 0 : *at++; }
};

int32_t ReadNumber(ProgramReader& in, uint8_t v) {
  if (v <= 246) return v - 139;
  if (v <= 250) return (v - 247) * 256 + in.Next() + 108;
  if (v <= 254) return -(v - 251) * 256 - in.Next() - 108;
  uint32_t word = 0;
  for (int i = 0; i < 4; ++i) word = word << 8 | in.Next();
  return int32_t(word);
}

// False once the glyph has ended.
bool RunProgram(T1Class* t, T1Program program, int depth);

bool CallSubr(T1Class* t, int depth) {
  const int32_t number = PopValue(t);
  if (number < 0 || number >= t->numSubrs || depth >= kMaxSubrDepth) return true;
  const T1Program program = t->subrsData[number];
  if (program.length <= uint32_t(t->lenIV)) return true;
  return RunProgram(t, program, depth + 1);
}

bool RunProgram(T1Class* t, T1Program program, int depth) {
  if (!program.data || program.length < uint32_t(t->lenIV)) return true;
  ProgramReader in{program.data + t->lenIV, program.data + program.length};
  const int32_t* v = t->stackValues;
  while (!in.AtEnd()) {
    tsi_Assert(t->mem, --t->stepsLeft > 0);
    const uint8_t code = in.Next();
    if (code >= 32) {
      Push(t, ReadNumber(in, code));
      continue;
    }
    switch (code) {
      case kVmoveto: MoveTo(t, 0, v[0]); break;
      case kRlineto: LineTo(t, v[0], v[1]); break;
      case kHlineto: LineTo(t, v[0], 0); break;
      case kVlineto: LineTo(t, 0, v[0]); break;
      case kRrcurveto: CurveTo(t, v[0], v[1], v[2], v[3], v[4], v[5]); break;
      case kClosepath:
        CloseContour(t);
        ClearStack(t);
        break;
      case kCallsubr:
        if (!CallSubr(t, depth)) return false;
        break;
      case kReturn: return true;
      case kEscape: RunEscaped(t, in.Next()); break;
      case kHsbw: SetBearingAndWidth(t, v[0], 0, v[1], 0); break;
      case kEndchar: ClearStack(t); return false;
      case kRmoveto: MoveTo(t, v[0], v[1]); break;
      case kHmoveto: MoveTo(t, v[0], 0); break;
      case kVhcurveto: CurveTo(t, 0, v[0], v[1], v[2], v[3], 0); break;
      case kHvcurveto: CurveTo(t, v[0], 0, v[1], v[2], 0, v[3]); break;
      default: ClearStack(t); break;  // the stem hints, and what isn't known
    }
  }
  return true;
}

void ResetMachine(T1Class* t) {
  t->x = t->y = 0;
  t->lsbx = t->lsby = t->awx = t->awy = 0;
  t->flexOn = t->contourOpen = false;
  t->flexCount = 0;
  t->gNumStackValues = 0;
  t->stepsLeft = kMaxProgramSteps;
  std::memset(t->stackValues, 0, sizeof t->stackValues);
}

void SetBounds(GlyphClass* glyph) {
  if (!glyph->pointCount) return;
  const auto [left, right] = std::minmax_element(glyph->oox, glyph->oox + glyph->pointCount);
  const auto [bottom, top] = std::minmax_element(glyph->ooy, glyph->ooy + glyph->pointCount);
  glyph->xmin = *left;
  glyph->xmax = *right;
  glyph->ymin = *bottom;
  glyph->ymax = *top;
}

// Program coordinates count from the glyph's origin, so the first phantom is 0, save in a glyph without contours.
void SetProgramPhantoms(const T1Class* t, GlyphClass* glyph) {
  const int at = glyph->pointCount;
  const int32_t left = glyph->contourCount ? 0 : hsWrapNeg(t->lsbx);
  glyph->oox[at] = int16_t(left);
  glyph->oox[at + 1] = int16_t(hsWrapAdd(left, t->awx));
  glyph->ooy[at] = 0;
  glyph->ooy[at + 1] = glyph->contourCount ? int16_t(t->awy) : int16_t{0};
  glyph->onCurve[at] = glyph->onCurve[at + 1] = 0;
}

}  // namespace

GlyphClass* RunGlyphProgram(T1Class* t, int32_t index) {
  GlyphHolder glyph(NewGlyph(t->mem));
  ReserveContours(glyph.get(), 8);
  ReservePoints(glyph.get(), 64);
  glyph->curveType = 3;
  t->glyph = glyph.get();
  ResetMachine(t);
  RunProgram(t, t->charData[index], 0);
  CloseContour(t);
  if (glyph->componentData) {
    glyph->contourCount = -1;
    glyph->pointCount = 0;
  }
  SetBounds(glyph.get());
  SetProgramPhantoms(t, glyph.get());
  t->glyph = nullptr;
  return glyph.Release();
}
