// The automatic hinter: moves a scaled outline so that its edges fall on whole pixels.
//
// It knows nothing of a font's instructions. From the font's own letters it learns where they sit (baseline, x-height,
// cap height, ascenders, descenders) and how thick their stems are; at a pixel size each of these heights gets
// a whole pixel. In a glyph it finds the edges, snaps those near such a height, gives stems a whole number of pixels
// and never less than one, and moves all other points with their neighbours, in order. Grey glyphs are fitted in Y
// only. In monochrome, which can't show part of a pixel, stems are fitted in X too. Phantom points stay: the advance
// is the engine's to round. docs/hinter.md shows it at work.
#pragma once

#include "t2k/hintedges.h"
#include "t2k/truetype.h"

enum HinterScript {
  ag_ROMAN,  // up to 999 glyphs: letters, whose stems are meant to look alike
  ag_KANJI,  // more of them: ideographs too, whose stems are drawn one by one
};

inline constexpr int kHintRecordBytes = 108;
inline constexpr int kMaxHintZones = 6;

// A height at which many letters end, in font units: where flat ones do, and how far round ones reach past it.
struct HintZone {
  int16_t flat;
  int16_t round;
  bool isTop;  // an upper end; ink lies below it
};

struct HintGlobals {
  int zoneCount;
  HintZone zone[kMaxHintZones];
  int16_t stem[2];  // by HintAxis: the usual thickness of stems that run across it, 0 if unknown
};

struct HinterClass {
  tsiMemObject* mem;
  int upem;
  HinterScript script;
  HintGlobals globals;
  // At the size that is set:
  int pixelsPerEm[2];                // by HintAxis
  int32_t zonePlace[kMaxHintZones];  // 26.6, whole pixels
  int32_t zoneRound[kMaxHintZones];  // likewise, for round ends
  int32_t stemWidth[2];              // by HintAxis; 26.6, whole pixels
};

// All throw tsiError.

HinterClass* NewHinter(tsiMemObject* mem, int upem, HinterScript script);
void DeleteHinter(HinterClass* hinter);

// Takes the settings from a stored record; false, with nothing changed, if it doesn't carry the stamp or is cut short.
bool LoadHintGlobals(HinterClass* hinter, const uint8_t* record, uint32_t length);
// Works them out from the font's letters; letters that are missing or damaged are passed over.
void ComputeHintGlobals(HinterClass* hinter, sfntClass* font);

// Sets the size; says whether grey bitmaps at it are better sharpened.
bool SetHintPixelSizes(HinterClass* hinter, int xPixelsPerEm, int yPixelsPerEm);

struct HintRequest {
  bool isFigure;  // one of the ten digits, which share a width; as no width is changed, nothing hangs on it
  bool isGrey;
};

// Fits a glyph whose points are scaled, phantoms included: oox, ooy are in font units, x, y move.
void HintGlyph(const HinterClass* hinter, GlyphClass* glyph, const HintRequest& request);
