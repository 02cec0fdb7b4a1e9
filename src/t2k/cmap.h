// Characters to glyph numbers.
//
// The map that a font is read by is always chosen for platform 3, encoding 1 first, whatever platform its opener
// prefers; after that a format 0 map goes before a format 6 map and that before a format 4 map of any platform.
#pragma once

#include "t2k/t2kstrm.h"

struct cmapEncoding {
  uint16_t platformID;
  uint16_t encodingID;
  uint32_t offset;  // from the beginning of the table
};

struct cmapClass {
  tsiMemObject* mem;
  uint16_t version;
  uint16_t numEncodingTables;
  cmapEncoding* platform;
  KeptBytes cmapData;         // the whole table
  uint32_t length;            // of cmapData
  uint16_t selectedPlatform;  // index into platform
  uint16_t selectedFormat;    // 0, 4 or 6
  uint16_t figIndex[10];      // glyphs of the digits, 65535 where there is none
};

// Reads the table that in spans; throws kT2KBadCmapFormat if the map chosen has another format.
cmapClass* ReadCmap(InputStream& in);
void DeleteCmap(cmapClass* cmap);

// 0 where the map has no glyph, and where it points outside its table.
uint16_t MapToGlyph(const cmapClass& cmap, uint32_t code);

bool IsFigureGlyph(const cmapClass& cmap, int32_t glyph);
