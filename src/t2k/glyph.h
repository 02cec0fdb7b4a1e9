// The outline of one glyph, from font units to scaled points.
//
// After its last point a glyph keeps two phantom points: the left side bearing point and the advance point. They
// travel with the outline through grid fitting and transformation, and their distance afterwards is the advance.
// A glyph with a negative contour count is a composite: it has no points but the phantoms, and its entries are kept raw
// in componentData for the renderer to walk.
#pragma once

#include "t2k/t2kstrm.h"

inline constexpr int kMaxGlyphPoints = 32000;

// Flags of a composite's entry.
enum ComponentFlag : uint16_t {
  kArgsAreWords = 0x0001,
  kArgsAreOffset = 0x0002,  // otherwise two point numbers that are to coincide
  kRoundOffset = 0x0004,
  kHasScale = 0x0008,
  kMoreComponents = 0x0020,
  kHasXYScale = 0x0040,
  kHasTwoByTwo = 0x0080,
  kHasInstructions = 0x0100,
  kUseMyMetrics = 0x0200,
};

// Made by NewGlyph only: most have their arrays in the same block.
struct GlyphClass {
  tsiMemObject* mem;
  int curveType;  // 2: quadratic, 3: cubic
  int contourCountMax;
  int pointCountMax;  // without the phantoms, which have space of their own; -1 before there is any
  int16_t contourCount;
  int16_t pointCount;
  int16_t* sp;  // first and last point of each contour
  int16_t* ep;
  int16_t* oox;  // font units
  int16_t* ooy;
  uint8_t* onCurve;  // 1 on the curve, 0 off
  int32_t* x;        // scaled, 26.6; null until the glyph is scaled
  int32_t* y;
  uint16_t* componentData;  // raw entries
  int componentSize;        // in words
  int componentMax;
  uint8_t* hintFragment;
  int hintLength;
  int16_t xmin, ymin, xmax, ymax;  // font units
};

// What the side-bearing table says of a glyph, in font units.
struct GlyphMetrics {
  int16_t lsb;
  uint16_t aw;
};

void Delete_GlyphClass(GlyphClass* glyph);

// Owns a glyph for the length of a scope.
class GlyphHolder {
 public:
  explicit GlyphHolder(GlyphClass* glyph = nullptr) : glyph_(glyph) {}
  ~GlyphHolder() { Delete_GlyphClass(glyph_); }
  GlyphHolder(const GlyphHolder&) = delete;
  GlyphHolder& operator=(const GlyphHolder&) = delete;

  GlyphClass* get() const { return glyph_; }
  GlyphClass* operator->() const { return glyph_; }
  GlyphClass* Release() { return std::exchange(glyph_, nullptr); }
  void Reset(GlyphClass* glyph) { Delete_GlyphClass(std::exchange(glyph_, glyph)); }

 private:
  GlyphClass* glyph_;
};

// The functions below throw tsiError.

// A glyph with nothing in it and space for nothing yet, not even the phantoms.
GlyphClass* NewGlyph(tsiMemObject* mem);
// No contours, the two phantoms only.
GlyphClass* NewEmptyGlyph(tsiMemObject* mem, GlyphMetrics metrics);
// Reads the glyph that begins at in's position, in the TrueType layout; its instructions only if readHints is set.
GlyphClass* ReadTrueTypeGlyph(InputStream& in, bool readHints, GlyphMetrics metrics);
// The same for the packed layout.
GlyphClass* ReadPackedGlyph(InputStream& in, GlyphMetrics metrics);

// Makes or grows the arrays so that there is space for so many points and the phantoms (or contours) altogether.
void ReservePoints(GlyphClass* glyph, int points);
void ReserveContours(GlyphClass* glyph, int contours);

// For readers of glyphs. Copies composite entries from in; the last entry's flags come back.
uint16_t ReadComponentEntries(InputStream& in, GlyphClass* glyph);
// Moves the outline so that its left edge obeys the side bearing, and sets the phantoms.
void AlignToSideBearing(GlyphClass* glyph, GlyphMetrics metrics);

// Space for the scaled points, phantoms included.
void AllocScaledPoints(GlyphClass* glyph);

// Joins a scaled component to the scaled result so far, which is null at first. With kArgsAreOffset the arguments are
// an offset in 26.6, otherwise a point number of the result and one of the part that are to coincide. Both glyphs
// belong to this call, which returns the new result: at first that is the part itself.
GlyphClass* MergeComponent(GlyphClass* result, GlyphClass* part, uint16_t flags, int32_t argument1, int32_t argument2);
