#include "t2k/t1.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "gfx/foundation/hsascii.h"
#include "gfx/foundation/hstrig.h"
#include "t2k/t1text.h"
#include "t2k/truetype.h"

namespace {

constexpr uint16_t kNoCode = 65535;
constexpr uint32_t kMaxNameLength = 63;
constexpr int kNoAscent = 32767;
constexpr int kNoDescent = -32767;
constexpr int kDefaultAscent = 750;
constexpr int kDefaultDescent = -250;
constexpr uint32_t kSubrMarkReach = 16;  // bytes after a subroutine's number in which its mark must lie

using CodeOfName = std::unordered_map<std::string_view, uint16_t>;

const uint8_t* DataEnd(const T1Class* t) { return t->dataInPtr + t->dataLen; }

T1Text FindFromStart(const T1Class* t, const char* key) { return FindAfter(t->dataInPtr, DataEnd(t), key); }
T1Text FindInPrivate(const T1Class* t, const char* key) {
  return FindAfter(t->dataInPtr + t->eexecGO, DataEnd(t), key);
}

int32_t WholeAfter(const T1Class* t, const char* key, int32_t fallback) {
  T1Text text = FindFromStart(t, key);
  return text.at ? ReadWhole(text) : fallback;
}

void OpenEexec(T1Class* t) {
  const T1Text behind = FindFromStart(t, "ntfile eexec");
  tsi_Assert(t->mem, behind.at);
  const uint8_t* at = behind.at;
  while (at < behind.end && (*at == '\r' || *at == '\n')) ++at;
  t->eexecGO = uint32_t(at - t->dataInPtr);
  t->dataLen = DecryptEexec(t->mem, t->dataInPtr, t->eexecGO, t->dataLen);
}

// The font's own encoding array, "dup CODE /NAME put" by "dup ", the first entry of a name counting. Empty when the
// font uses the Standard encoding.
CodeOfName OwnEncoding(const T1Class* t) {
  CodeOfName codes;
  if (!t->encoding || t->encoding >= DataEnd(t) || !hsAsciiIsDigit(char(*t->encoding))) return codes;
  const uint8_t* end = t->dataInPtr + t->eexecGO;
  for (T1Text text = FindAfter(t->encoding, end, "dup "); text.at; text = FindAfter(text.at, end, "dup ")) {
    if (text.AtEnd() || !hsAsciiIsDigit(char(*text.at))) continue;
    const auto code = uint16_t(ReadWhole(text));
    while (!text.AtEnd() && IsBlank(*text.at)) ++text.at;
    if (text.AtEnd() || *text.at != '/') continue;
    const uint8_t* name = ++text.at;
    while (!text.AtEnd() && !IsBlank(*text.at)) ++text.at;
    codes.emplace(std::string_view(reinterpret_cast<const char*>(name), size_t(text.at - name)), code);
  }
  return codes;
}

bool HasOwnEncoding(const T1Class* t) {
  return t->encoding && t->encoding < DataEnd(t) && hsAsciiIsDigit(char(*t->encoding));
}

void AddGlyph(T1Class* t, int index, const CodeOfName& own, const uint8_t* name, T1Program program) {
  tsi_Assert(t->mem, index < t->NumCharStrings);
  const auto* nameEnd = static_cast<const uint8_t*>(std::memchr(name, ' ', size_t(program.data - name)));
  const auto length = uint32_t(nameEnd ? nameEnd - name : program.data - name);
  tsi_Assert(t->mem, length <= kMaxNameLength);
  const auto* text = reinterpret_cast<const char*>(name);
  uint16_t code;
  if (HasOwnEncoding(t)) {
    const auto found = own.find(std::string_view(text, length));
    code = found == own.end() ? kNoCode : found->second;
  } else {
    code = StandardCodeOfName(text, length);
  }
  t->charCode[index] = t->adobeCode[index] = code;
  t->charData[index] = program;
}

void AllocGlyphList(T1Class* t, int32_t count) {
  // Every glyph takes some bytes of its own, so a count beyond them is false.
  tsi_Assert(t->mem, count >= 1 && count <= kMaxCharStrings && uint32_t(count) <= t->dataLen);
  t->NumCharStrings = count;
  t->charCode = tsi_NewArray<uint16_t>(t->mem, uint32_t(count) * 2);
  t->adobeCode = t->charCode + count;
  t->charData = tsi_NewArray<T1Program>(t->mem, uint32_t(count));
  std::fill_n(t->charCode, count * 2, kNoCode);
  std::fill_n(t->charData, count, T1Program{nullptr, 0});
}

void BuildGlyphList(T1Class* t) {
  t->encoding = FindFromStart(t, "/Encoding ").at;
  T1Text text = FindInPrivate(t, "/CharStrings ");
  tsi_Assert(t->mem, text.at);
  t->charstringsGO = uint32_t(text.at - t->dataInPtr);
  AllocGlyphList(t, ReadWhole(text));

  const CodeOfName own = OwnEncoding(t);
  const uint8_t* window = text.at;  // never reaches back into a program
  const uint8_t* name = nullptr;
  int index = 0;
  for (const uint8_t* at = text.at; at < text.end; ++at) {
    if (*at == '/') name = at + 1;
    if (*at != ' ' || at - window < 3 || !IsProgramMark(at - 3) || !name) continue;
    const uint32_t length = NumberEndingAt(window, at - 3);
    const uint8_t* data = at + 1;
    tsi_Assert(t->mem, length <= uint32_t(text.end - data));
    AddGlyph(t, index++, own, name, {data, length});
    window = data + length;
    at = window - 1;
    name = nullptr;
  }
}

// The first "RD " or "-| " of which all three bytes lie within reach; null if there is none.
const uint8_t* FindSubrMark(const uint8_t* at, const uint8_t* end) {
  end = std::min(end, at + std::min<std::ptrdiff_t>(end - at, kSubrMarkReach + 3));
  for (; end - at >= 3; ++at) {
    if (std::memcmp(at, "RD ", 3) == 0 || std::memcmp(at, "-| ", 3) == 0) return at;
  }
  return nullptr;
}

void IndexSubrs(T1Class* t) {
  T1Text text = FindInPrivate(t, "/Subrs ");
  if (!text.at) return;
  const int32_t count = ReadWhole(text);
  tsi_Assert(t->mem, count >= 0 && uint32_t(count) <= t->dataLen);
  t->numSubrs = count;
  t->subrsData = tsi_NewArray<T1Program>(t->mem, uint32_t(count));
  std::fill_n(t->subrsData, count, T1Program{nullptr, 0});
  for (int i = 0; i < count; ++i) {
    text = FindAfter(text.at, text.end, "dup ");
    if (!text.at) return;  // fewer than declared
    const int32_t number = ReadWhole(text);
    const uint8_t* mark = FindSubrMark(text.at, text.end);
    tsi_Assert(t->mem, mark && number >= 0 && number < t->numSubrs);
    const uint8_t* data = mark + 3;
    const uint32_t length = NumberEndingAt(text.at, mark - 1);
    tsi_Assert(t->mem, length <= uint32_t(text.end - data));
    t->subrsData[number] = {data, length};
    text.at = data + length;
  }
}

void ReadWeights(T1Class* t) {
  T1Text text = FindFromStart(t, "/WeightVector ");
  if (!text.at) return;
  while (t->numMasters < kMaxMasters && ReadFixed(text, 1, &t->WeightVector[t->numMasters])) ++t->numMasters;
}

void ReadTextMetrics(T1Class* t) {
  t->upem = WholeAfter(t, "/em ", 1000);
  tsi_Assert(t->mem, t->upem >= 1 && t->upem <= 32767);
  t->ascent = WholeAfter(t, "/ascent ", kNoAscent);
  t->descent = hsWrapNeg(WholeAfter(t, "/descent ", -kNoDescent));
  if (T1Text text = FindFromStart(t, "/FontMatrix "); text.at) {
    hsFixed number = 0;
    // Only the third number counts: it shears x by y.
    for (int i = 0; i < 3; ++i) {
      if (!ReadFixed(text, 1000, &number)) break;
      if (i == 2) t->italicShear = number;
    }
  }
  if (T1Text text = FindFromStart(t, "/ItalicAngle "); text.at) ReadFixed(text, 1, &t->italicAngle);
}

struct VerticalExtent {
  int top, bottom;
};

VerticalExtent ExtentOf(const GlyphClass* glyph) {
  if (!glyph->pointCount) return {0, 0};
  const auto [low, high] = std::minmax_element(glyph->ooy, glyph->ooy + glyph->pointCount);
  return {*high, *low};
}

// Runs every glyph once.
void MeasureGlyphs(T1Class* t) {
  const auto count = uint32_t(t->NumCharStrings);
  t->hmtx = tsi_NewRecord<hmtxClass>(t->mem);
  t->hmtx->mem = t->mem;
  t->hmtx->numGlyphs = t->hmtx->numberOfHMetrics = int(count);
  t->hmtx->lsb = tsi_NewArray<int16_t>(t->mem, count * 2);
  t->hmtx->aw = reinterpret_cast<uint16_t*>(t->hmtx->lsb + count);

  int ascent = kDefaultAscent, descent = kDefaultDescent;
  int stepsLeft = kMaxOpeningSteps;
  for (uint32_t i = 0; i < count; ++i) {
    const GlyphHolder glyph(RunGlyphProgram(t, int32_t(i)));
    stepsLeft -= kMaxProgramSteps - t->stepsLeft;
    tsi_Assert(t->mem, stepsLeft >= 0);
    t->hmtx->aw[i] = uint16_t(t->awx);
    t->hmtx->lsb[i] = int16_t(t->lsbx);
    t->maxAW = std::max(t->maxAW, t->awx);  // widths may be negative
    t->maxPoints = std::max(t->maxPoints, int(glyph->pointCount));
    if (t->charCode[i] == 'f') ascent = ExtentOf(glyph.get()).top;
    if (t->charCode[i] == 'g') descent = ExtentOf(glyph.get()).bottom;
  }
  t->advanceWidthMax = t->maxAW;
  if (t->ascent == kNoAscent) t->ascent = ascent;
  if (t->descent == kNoDescent) t->descent = descent;
  t->lineGap = std::max(0, hsWrapSub(t->upem, hsWrapSub(t->ascent, t->descent)));
}

}  // namespace

T1Class* tsi_NewT1Class(tsiMemObject* mem, const uint8_t* bytes, uint32_t length) {
  auto* t = tsi_NewRecord<T1Class>(mem);
  t->mem = mem;
  t->dataInPtr = tsi_NewArray<uint8_t>(mem, length);
  t->dataLen = length;
  if (length) std::memcpy(t->dataInPtr, bytes, length);
  if (length && t->dataInPtr[0] == 128) tsi_Assert(mem, ExtractPureT1FromPCType1(t->dataInPtr, &t->dataLen));
  OpenEexec(t);
  BuildGlyphList(t);
  IndexSubrs(t);
  T1Text lenIV = FindInPrivate(t, "/lenIV ");
  t->lenIV = lenIV.at ? std::max(0, ReadWhole(lenIV)) : 4;
  ReadWeights(t);
  ReadTextMetrics(t);
  MeasureGlyphs(t);
  return t;
}

void tsi_DeleteT1Class(T1Class* t) {
  if (!t) return;
  tsi_DeAllocMem(t->mem, t->dataInPtr);
  tsi_DeAllocMem(t->mem, t->charCode);
  tsi_DeAllocMem(t->mem, t->charData);
  tsi_DeAllocMem(t->mem, t->subrsData);
  if (t->hmtx) tsi_DeAllocMem(t->mem, t->hmtx->lsb);
  tsi_DeAllocMem(t->mem, t->hmtx);
  tsi_DeAllocMem(t->mem, t);
}

GlyphClass* tsi_T1GetGlyphByIndex(T1Class* t, int32_t index, uint16_t* outAdvance) {
  tsi_Assert(t->mem, index >= 0 && index < t->NumCharStrings, kT2KNoGlyph);
  GlyphClass* glyph = RunGlyphProgram(t, index);
  *outAdvance = t->hmtx->aw[index];
  return glyph;
}

GlyphClass* tsi_T1GetGlyphByCode(T1Class* t, uint32_t code, uint16_t* outAdvance) {
  return tsi_T1GetGlyphByIndex(t, tsi_T1GetGlyphIndex(t, code), outAdvance);
}

uint16_t tsi_T1GetGlyphIndex(const T1Class* t, uint32_t code) {
  if (code >= kNoCode) return 0;
  uint16_t* end = t->charCode + t->NumCharStrings;
  uint16_t* found = std::find(t->charCode, end, uint16_t(code));
  return found == end ? 0 : uint16_t(found - t->charCode);
}

void tsi_T1GetMetrics(const T1Class* t, int32_t* ascent, int32_t* descent, int32_t* lineGap, int32_t* maxAdvance,
                      int32_t* caretRise, int32_t* caretRun) {
  *ascent = t->ascent;
  *descent = t->descent;
  *lineGap = t->lineGap;
  *maxAdvance = t->advanceWidthMax;
  const hsFixed radians = hsFixMulSat(t->italicAngle, kRadiansPerDegree);
  *caretRise = hsFixedCos(radians);
  *caretRun = hsFixedSin(radians);
}
