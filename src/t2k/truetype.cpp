#include "t2k/truetype.h"

#include <algorithm>

#include "t2k/t1.h"

namespace {

constexpr int16_t kFormatTrueType = 0;
constexpr int16_t kFormatPacked = 2000;

void ReadCollectionHeader(sfntClass* font, int32_t fontNumber) {
  InputStream& in = *font->in;
  if (BytesLeft(in) < 4 || ReadUInt32(in) != hsTag("ttcf")) {
    Rewind(in);
    return;
  }
  auto* ttcf = tsi_NewRecord<ttcfClass>(font->mem);
  font->ttcf = ttcf;
  ttcf->version = ReadUInt32(in);
  ttcf->directoryCount = ReadUInt32(in);
  tsi_Assert(font->mem, ttcf->directoryCount <= BytesLeft(in) / 4);
  ttcf->tableDirectoryOffset = tsi_NewArray<uint32_t>(font->mem, ttcf->directoryCount);
  for (uint32_t i = 0; i < ttcf->directoryCount; ++i) ttcf->tableDirectoryOffset[i] = ReadUInt32(in);
  tsi_Assert(font->mem, fontNumber >= 0 && uint32_t(fontNumber) < ttcf->directoryCount);
  SeekTo(in, ttcf->tableDirectoryOffset[fontNumber]);
}

void ReadOffsetTable(sfntClass* font) {
  InputStream& in = *font->in;
  auto* directory = tsi_NewRecord<sfntOffsetTable>(font->mem);
  font->offsetTable = directory;
  directory->version = ReadUInt32(in);
  directory->numOffsets = ReadUInt16(in);
  directory->searchRange = ReadUInt16(in);
  directory->entrySelector = ReadUInt16(in);
  directory->rangeShift = ReadUInt16(in);
  tsi_Assert(font->mem, directory->numOffsets * 16u <= BytesLeft(in));
  directory->table = tsi_NewArray<sfntTableEntry>(font->mem, directory->numOffsets);
  for (int i = 0; i < directory->numOffsets; ++i) {
    sfntTableEntry& entry = directory->table[i];
    entry.tag = ReadUInt32(in);
    entry.checkSum = ReadUInt32(in);
    entry.offset = ReadUInt32(in);
    entry.length = ReadUInt32(in);
  }
}

// Calls parse with a stream over the table, if the font has it.
template <class Parse>
void WithTable(sfntClass* font, uint32_t tag, Parse parse) {
  const sfntTableEntry* entry = GetSfntTable(font, tag);
  if (!entry) return;
  SubStream in(*font->in, entry->offset, entry->length);
  parse(*in);
}

void ReadHead(sfntClass* font, InputStream& in) {
  auto* head = tsi_NewRecord<headClass>(font->mem);
  font->head = head;
  head->version = ReadUInt32(in);
  head->fontRevision = ReadUInt32(in);
  head->checkSumAdjustment = ReadUInt32(in);
  head->magicNumber = ReadUInt32(in);
  head->flags = ReadUInt16(in);
  head->unitsPerEm = ReadUInt16(in);
  for (uint32_t& word : head->created) word = ReadUInt32(in);
  for (uint32_t& word : head->modified) word = ReadUInt32(in);
  head->xMin = ReadInt16(in);
  head->yMin = ReadInt16(in);
  head->xMax = ReadInt16(in);
  head->yMax = ReadInt16(in);
  head->macStyle = ReadUInt16(in);
  head->lowestRecPPEM = ReadUInt16(in);
  head->fontDirectionHint = ReadInt16(in);
  head->indexToLocFormat = ReadInt16(in);
  head->glyphDataFormat = ReadInt16(in);
}

void ReadHhea(sfntClass* font, InputStream& in) {
  auto* hhea = tsi_NewRecord<hheaClass>(font->mem);
  font->hhea = hhea;
  hhea->version = ReadUInt32(in);
  hhea->ascent = ReadInt16(in);
  hhea->descent = ReadInt16(in);
  hhea->lineGap = ReadInt16(in);
  hhea->advanceWidthMax = ReadUInt16(in);
  hhea->minLeftSideBearing = ReadInt16(in);
  hhea->minRightSideBearing = ReadInt16(in);
  hhea->xMaxExtent = ReadInt16(in);
  hhea->caretSlopeRise = ReadInt16(in);
  hhea->caretSlopeRun = ReadInt16(in);
  for (int16_t& word : hhea->reserved) word = ReadInt16(in);
  hhea->numberOfHMetrics = ReadUInt16(in);
}

void ReadMaxp(sfntClass* font, InputStream& in) {
  auto* maxp = tsi_NewRecord<maxpClass>(font->mem);
  font->maxp = maxp;
  maxp->version = ReadUInt32(in);
  maxp->numGlyphs = ReadUInt16(in);
  maxp->maxPoints = ReadUInt16(in);
  maxp->maxContours = ReadUInt16(in);
  maxp->maxCompositePoints = ReadUInt16(in);
  maxp->maxCompositeContours = ReadUInt16(in);
  for (uint16_t& word : maxp->rest) word = ReadUInt16(in);
}

void ReadHmtx(sfntClass* font, InputStream& in) {
  tsi_Assert(font->mem, font->hhea && font->maxp);
  auto* hmtx = tsi_NewRecord<hmtxClass>(font->mem);
  font->hmtx = hmtx;
  hmtx->mem = font->mem;
  hmtx->numGlyphs = font->maxp->numGlyphs;
  hmtx->numberOfHMetrics = font->hhea->numberOfHMetrics;
  hmtx->lsb = tsi_NewArray<int16_t>(font->mem, hmtx->numGlyphs * 2u);
  hmtx->aw = reinterpret_cast<uint16_t*>(hmtx->lsb + hmtx->numGlyphs);
  const int pairs = std::min(hmtx->numGlyphs, hmtx->numberOfHMetrics), singles = hmtx->numGlyphs - pairs;
  const uint32_t size = pairs * 4u + singles * 2u;
  tsi_Assert(font->mem, size <= BytesLeft(in));
  const SubStream bytes(in, in.pos - in.posZero, size);
  const uint8_t* p = bytes.Bytes();
  for (int i = 0; i < pairs; ++i, p += 4) {
    hmtx->aw[i] = hsBig16(p);
    hmtx->lsb[i] = int16_t(hsBig16(p + 2));
  }
  std::fill_n(hmtx->aw + pairs, singles, pairs > 0 ? hmtx->aw[pairs - 1] : uint16_t{0});
  for (int i = pairs; i < hmtx->numGlyphs; ++i, p += 2) hmtx->lsb[i] = int16_t(hsBig16(p));
}

void ReadLoca(sfntClass* font, InputStream& in) {
  tsi_Assert(font->mem, font->head && font->maxp);
  const int16_t format = font->head->indexToLocFormat;
  tsi_Assert(font->mem, format == 0 || format == 1);
  font->loca = KeepBytes(in, (font->maxp->numGlyphs + 1u) * (format ? 4 : 2));
}

uint32_t GlyphOffset(const sfntClass* font, int32_t index) {
  const uint8_t* const loca = font->loca.at;
  return font->head->indexToLocFormat ? hsBig32(loca + size_t(index) * 4) : hsBig16(loca + size_t(index) * 2) * 2u;
}

void OpenSfnt(sfntClass* font, int32_t fontNumber) {
  Rewind(*font->in);
  ReadCollectionHeader(font, fontNumber);
  ReadOffsetTable(font);
  WithTable(font, hsTag("head"), [&](InputStream& in) { ReadHead(font, in); });
  WithTable(font, hsTag("hhea"), [&](InputStream& in) { ReadHhea(font, in); });
  WithTable(font, hsTag("maxp"), [&](InputStream& in) { ReadMaxp(font, in); });
  WithTable(font, hsTag("hmtx"), [&](InputStream& in) { ReadHmtx(font, in); });
  if (font->styling.StyleMetricsFunc && font->hmtx) {
    font->styling.StyleMetricsFunc(font->hmtx, font->mem, GetUPEM(font), font->styling.params);
  }
  WithTable(font, hsTag("loca"), [&](InputStream& in) { ReadLoca(font, in); });
  // A variable font's pairs belong to its default instance only: it goes without.
  if (!GetSfntTable(font, hsTag("fvar"))) {
    WithTable(font, hsTag("kern"), [&](InputStream& in) { font->kern = ReadKern(in); });
  }
}

void OpenType1(sfntClass* font) {
  Rewind(*font->in);
  tsiBlock<uint8_t> bytes(font->mem, BytesLeft(*font->in));
  const uint32_t length = BytesLeft(*font->in);
  ReadBytes(*font->in, bytes.get(), length);
  font->T1 = tsi_NewT1Class(font->mem, bytes.get(), length);
}

void ForgetFont(void* object) {
  auto* font = static_cast<sfntClass*>(object);
  sfntClass shell{};
  shell.in = font->in;
  shell.mem = font->mem;
  *font = shell;
}

void NeedCmap(sfntClass* font) {
  if (font->cmap) return;
  WithTable(font, hsTag("cmap"), [&](InputStream& in) { font->cmap = ReadCmap(in); });
}

GlyphClass* ReadSfntGlyph(sfntClass* font, int32_t index, bool readHints) {
  tsi_Assert(font->mem, font->head && font->loca.at && font->hmtx);
  const GlyphMetrics metrics{font->hmtx->lsb[index], font->hmtx->aw[index]};
  const uint32_t offset = GlyphOffset(font, index);
  const uint32_t end = GlyphOffset(font, index + 1);
  if (offset == end) return NewEmptyGlyph(font->mem, metrics);

  const sfntTableEntry* glyf = GetSfntTable(font, hsTag("glyf"));
  tsi_Assert(font->mem, glyf && offset < end && end <= glyf->length);
  tsi_Assert(font->mem, glyf->offset <= UINT32_MAX - offset);
  SubStream in(*font->in, glyf->offset + offset, end - offset);
  switch (font->head->glyphDataFormat) {
    case kFormatTrueType: return ReadTrueTypeGlyph(*in, readHints, metrics);
    case kFormatPacked: return ReadPackedGlyph(*in, metrics);
    default: tsi_Error(font->mem, kT2KDamagedFont);
  }
}

}  // namespace

sfntClass* New_sfntClass(tsiMemObject* mem, int fontType, int32_t fontNumber, InputStream* stream,
                         const T2KStyling* styling, int* errCode) {
  return tsi_Enter(mem, errCode, [&] {
    tsi_Assert(mem, fontType == kFontType1 || fontType == kFontTypeSfnt || fontType == kFontTypeSfntInMemory,
               kT2KBadFontType);
    tsi_Assert(mem, stream);
    auto* font = tsi_NewRecord<sfntClass>(mem);
    font->mem = mem;
    font->in = stream;
    if (styling) font->styling = *styling;
    if (fontType == kFontType1) {
      OpenType1(font);
    } else {
      OpenSfnt(font, fontNumber);
    }
    tsi_HoldByCaller(mem, font, ForgetFont);
    return font;
  });
}

void Delete_sfntClass(sfntClass* font, int* errCode) {
  if (errCode) *errCode = 0;
  if (!font) return;
  tsiMemObject* mem = font->mem;
  tsi_DeleteHeld(mem, font, errCode, [&] {
    if (font->offsetTable) tsi_DeAllocMem(mem, font->offsetTable->table);
    tsi_DeAllocMem(mem, font->offsetTable);
    if (font->ttcf) tsi_DeAllocMem(mem, font->ttcf->tableDirectoryOffset);
    tsi_DeAllocMem(mem, font->ttcf);
    tsi_DeAllocMem(mem, font->head);
    tsi_DeAllocMem(mem, font->hhea);
    tsi_DeAllocMem(mem, font->maxp);
    if (font->hmtx) tsi_DeAllocMem(mem, font->hmtx->lsb);
    tsi_DeAllocMem(mem, font->hmtx);
    tsi_DeAllocMem(mem, font->loca.copy);
    DeleteCmap(font->cmap);
    DeleteKern(font->kern);
    tsi_DeleteT1Class(font->T1);
  });
}

const sfntTableEntry* GetSfntTable(const sfntClass* font, uint32_t tag) {
  if (!font->offsetTable) return nullptr;
  const sfntTableEntry* begin = font->offsetTable->table;
  const sfntTableEntry* end = begin + font->offsetTable->numOffsets;
  const sfntTableEntry* found = std::find_if(begin, end, [&](const auto& entry) { return entry.tag == tag; });
  return found == end ? nullptr : found;
}

int GetUPEM(const sfntClass* font) {
  if (font->T1) return font->T1->upem;
  return font->head ? font->head->unitsPerEm : 0;
}

int GetNumGlyphs(const sfntClass* font) {
  if (font->T1) return font->T1->NumCharStrings;
  return font->maxp ? font->maxp->numGlyphs : 0;
}

int GetMaxPoints(const sfntClass* font) {
  if (font->T1) return font->T1->maxPoints;
  return font->maxp ? std::max(font->maxp->maxPoints, font->maxp->maxCompositePoints) : 0;
}

void GetFontMetrics(const sfntClass* font, int32_t* ascent, int32_t* descent, int32_t* lineGap, int32_t* maxAdvance,
                    int32_t* caretRise, int32_t* caretRun) {
  *ascent = *descent = *lineGap = *maxAdvance = *caretRise = *caretRun = 0;
  if (font->T1) {
    tsi_T1GetMetrics(font->T1, ascent, descent, lineGap, maxAdvance, caretRise, caretRun);
    return;
  }
  const hheaClass* hhea = font->hhea;
  if (!hhea) return;
  *ascent = hhea->ascent;
  *descent = hhea->descent;
  *lineGap = hhea->lineGap;
  *maxAdvance = hhea->advanceWidthMax;
  int32_t rise = hhea->caretSlopeRise;
  int32_t run = hhea->caretSlopeRun;
  for (int i = 0; i < 16 && std::abs(rise * 2) <= 65535 && std::abs(run * 2) <= 65535; ++i) {
    rise *= 2;
    run *= 2;
  }
  *caretRise = rise;
  *caretRun = run;
}

void GetKernPair(const sfntClass* font, uint16_t left, uint16_t right, int32_t* outX, int32_t* outY) {
  *outX = font->kern ? LookUpKern(*font->kern, left, right) : 0;
  *outY = 0;
}

GlyphClass* GetGlyphByIndex(sfntClass* font, int32_t index, bool readHints, uint16_t* outAdvance) {
  if (font->T1) return tsi_T1GetGlyphByIndex(font->T1, index, outAdvance);
  tsi_Assert(font->mem, font->hmtx);
  tsi_Assert(font->mem, index >= 0 && index < GetNumGlyphs(font), kT2KNoGlyph);
  GlyphClass* glyph = ReadSfntGlyph(font, index, readHints);
  if (font->styling.StyleFunc) font->styling.StyleFunc(glyph, font->mem, GetUPEM(font), font->styling.params);
  *outAdvance = font->hmtx->aw[index];
  return glyph;
}

GlyphClass* GetGlyphByCharCode(sfntClass* font, uint32_t code, bool readHints, uint16_t* outAdvance) {
  return GetGlyphByIndex(font, GetSfntGlyphIndex(font, code), readHints, outAdvance);
}

uint16_t GetSfntGlyphIndex(sfntClass* font, uint32_t code) {
  if (font->T1) return tsi_T1GetGlyphIndex(font->T1, code);
  NeedCmap(font);
  tsi_Assert(font->mem, font->cmap);
  return MapToGlyph(*font->cmap, code);
}

uint16_t GetAdvance(const sfntClass* font, int32_t index) {
  const hmtxClass* hmtx = font->T1 ? font->T1->hmtx : font->hmtx;
  tsi_Assert(font->mem, hmtx && index >= 0 && index < hmtx->numGlyphs, kT2KNoGlyph);
  return hmtx->aw[index];
}

bool IsFigure(sfntClass* font, int32_t index) {
  if (font->T1) return false;
  NeedCmap(font);
  return font->cmap && IsFigureGlyph(*font->cmap, index);
}
