// One opened font: its tables, glyphs, character map, kerning and metrics.
//
// An sfnt's tables are parsed once, when it is opened, and `cmap` on first need. Tables that are absent are null; a
// call that needs one that isn't there ends with kT2KDamagedFont. A Type 1 font is opened by the same call: then
// T1 is set, all tables are null, and the accessors answer from it.
#pragma once

#include "t2k/cmap.h"
#include "t2k/glyph.h"
#include "t2k/kern.h"

struct T1Class;

enum sfntFontType : int {
  kFontType1 = 1,
  kFontTypeSfnt = 2,
  kFontTypeSfntInMemory = 0x16,
};

struct sfntTableEntry {
  uint32_t tag;
  uint32_t checkSum;  // not verified
  uint32_t offset;    // from the beginning of the file
  uint32_t length;
};

struct sfntOffsetTable {
  uint32_t version;
  uint16_t numOffsets, searchRange, entrySelector, rangeShift;
  sfntTableEntry* table;
};

struct ttcfClass {
  uint32_t version;
  uint32_t directoryCount;
  uint32_t* tableDirectoryOffset;
};

struct headClass {
  uint32_t version, fontRevision, checkSumAdjustment, magicNumber;
  uint16_t flags, unitsPerEm;
  uint32_t created[2], modified[2];
  int16_t xMin, yMin, xMax, yMax;
  uint16_t macStyle, lowestRecPPEM;
  int16_t fontDirectionHint, indexToLocFormat, glyphDataFormat;
};

struct hheaClass {
  uint32_t version;
  int16_t ascent, descent, lineGap;
  uint16_t advanceWidthMax;
  int16_t minLeftSideBearing, minRightSideBearing, xMaxExtent;
  int16_t caretSlopeRise, caretSlopeRun;
  int16_t reserved[6];  // five reserved words and the metric data format
  uint16_t numberOfHMetrics;
};

struct maxpClass {
  uint32_t version;
  uint16_t numGlyphs;
  uint16_t maxPoints, maxContours, maxCompositePoints, maxCompositeContours;
  uint16_t rest[9];
};

struct hmtxClass {
  tsiMemObject* mem;
  int numGlyphs;
  int numberOfHMetrics;
  int16_t* lsb;
  uint16_t* aw;
};

// Algorithmic styling, given when a font is opened: both hooks may change what they get, in font units. Either may be
// null. They run inside the engine and must not throw.
struct T2KStyling {
  void (*StyleFunc)(GlyphClass* glyph, tsiMemObject* mem, int upem, const int32_t params[4]);
  void (*StyleMetricsFunc)(hmtxClass* hmtx, tsiMemObject* mem, int upem, const int32_t params[4]);
  int32_t params[4];
};

struct sfntClass {
  sfntOffsetTable* offsetTable;
  T1Class* T1;
  ttcfClass* ttcf;
  headClass* head;
  maxpClass* maxp;
  KeptBytes loca;  // numGlyphs + 1 offsets into glyf, as they lie in the file
  hheaClass* hhea;
  hmtxClass* hmtx;
  cmapClass* cmap;
  kernClass* kern;
  uint16_t preferedPlatformID;  // 65535: none set. They choose no map: see ReadCmap
  uint16_t preferedPlatformSpecificID;
  T2KStyling styling;
  InputStream* in;  // the caller's
  tsiMemObject* mem;
};

// Opens font number fontNumber (0 unless the file is a collection) of type kFontType...; styling may be null and is
// copied. Null on failure. The stream and its bytes must outlive the font.
sfntClass* New_sfntClass(tsiMemObject* mem, int fontType, int32_t fontNumber, InputStream* stream,
                         const T2KStyling* styling, int* errCode);
void Delete_sfntClass(sfntClass* font, int* errCode);

// Plain looks at an opened font; 0 where it has no such table.
const sfntTableEntry* GetSfntTable(const sfntClass* font, uint32_t tag);  // the first with this tag, or null
int GetUPEM(const sfntClass* font);
int GetNumGlyphs(const sfntClass* font);
int GetMaxPoints(const sfntClass* font);

// Font units; the caret slope scaled up to the precision of 16.16 numbers.
void GetFontMetrics(const sfntClass* font, int32_t* ascent, int32_t* descent, int32_t* lineGap, int32_t* maxAdvance,
                    int32_t* caretRise, int32_t* caretRun);

// The kerning of two glyph indices in font units; outY is always 0.
void GetKernPair(const sfntClass* font, uint16_t left, uint16_t right, int32_t* outX, int32_t* outY);

// What follows is for inside the engine and throws tsiError. A glyph belongs to the caller.

GlyphClass* GetGlyphByIndex(sfntClass* font, int32_t index, bool readHints, uint16_t* outAdvance);
GlyphClass* GetGlyphByCharCode(sfntClass* font, uint32_t code, bool readHints, uint16_t* outAdvance);
uint16_t GetSfntGlyphIndex(sfntClass* font, uint32_t code);
uint16_t GetAdvance(const sfntClass* font, int32_t index);
// Whether a glyph index is one of the ten digits. Without a character map none is.
bool IsFigure(sfntClass* font, int32_t index);
