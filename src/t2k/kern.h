// Pair kerning, in both layouts of the table.
//
// Only sub-tables of format 0 keep pairs, and only the first sub-table is ever asked: a font whose first one is
// of another format, or vertical, kerns by that one or not at all.
#pragma once

#include "t2k/t2kstrm.h"

struct kernPairs {
  uint16_t nPairs, searchRange, entrySelector, rangeShift;
  // As they lie in the file, sorted by key: a key of 32 bits, the left glyph in the high half and the right glyph in
  // the low half, and a value of 16.
  KeptBytes pairs;
};

struct kernSubTable {
  uint32_t length;
  uint16_t coverage;
  uint8_t format;
  kernPairs* pairs;  // null unless format is 0
};

struct kernClass {
  tsiMemObject* mem;
  uint16_t version;
  uint32_t nTables;
  kernSubTable* table;
};

kernClass* ReadKern(InputStream& in);
void DeleteKern(kernClass* kern);

// Font units, 0 for an absent pair.
int16_t LookUpKern(const kernClass& kern, uint16_t left, uint16_t right);
