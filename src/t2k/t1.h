// Type 1 fonts: PostScript text around encrypted glyph programs.
//
// Opening copies the font's bytes and decrypts the private portion and, in the same pass, every program in it. Glyph
// programs and subroutines are then indexed where they lie and every glyph runs once, for its advance. Hints in
// programs are passed over: outlines are grid fitted by the engine's own hinter, like all others.
#pragma once

#include "gfx/foundation/hstypes.h"
#include "t2k/glyph.h"

inline constexpr int kMaxStackValues = 32;
inline constexpr int kMaxMasters = 16;
inline constexpr int kMaxCharStrings = 65535;
// Steps (bytes, roughly) that one glyph's programs may take, and all glyphs together when a font is opened.
inline constexpr int kMaxProgramSteps = 200000;
inline constexpr int kMaxOpeningSteps = 4000000;

// A glyph's program or a subroutine, encryption off, the lenIV bytes in front included.
struct T1Program {
  const uint8_t* data;  // null if the font doesn't have it
  uint32_t length;
};

struct hmtxClass;

struct T1Class {
  tsiMemObject* mem;
  uint8_t* dataInPtr;  // the font's bytes, decrypted after eexecGO
  uint32_t dataLen;
  uint32_t eexecGO;         // where the private portion begins
  uint32_t charstringsGO;   // where the glyph programs begin
  int lenIV;                // bytes in front of each program
  const uint8_t* encoding;  // text after "/Encoding ", or null

  int NumCharStrings;
  uint16_t* charCode;   // code of each glyph, 65535 if it has none; one block with adobeCode
  uint16_t* adobeCode;  // the same in the Standard order
  T1Program* charData;
  int numSubrs;
  T1Program* subrsData;

  // A program that runs.
  int32_t x, y;
  bool flexOn;
  int flexCount;
  bool contourOpen;
  int stepsLeft;
  int gNumStackValues;
  int32_t stackValues[kMaxStackValues];
  GlyphClass* glyph;
  int32_t lsbx, lsby, awx, awy;  // of the last program run

  hmtxClass* hmtx;
  int numMasters;  // 0 unless it is a multiple-master font
  hsFixed WeightVector[kMaxMasters];

  // Font units, the last two 16.16.
  int upem, maxAW, ascent, descent, lineGap, advanceWidthMax, maxPoints;
  hsFixed italicAngle;  // degrees
  hsFixed italicShear;
};

// Takes the segment headers out of a font in its PC form, in place; *length becomes what is left. Null, with the
// bytes in any state, if a segment doesn't begin as it should or runs beyond the end.
uint8_t* ExtractPureT1FromPCType1(uint8_t* bytes, uint32_t* length);

// What follows throws tsiError.

// Opens the font in bytes, which are copied; the PC form is taken too.
T1Class* tsi_NewT1Class(tsiMemObject* mem, const uint8_t* bytes, uint32_t length);
void tsi_DeleteT1Class(T1Class* t);

GlyphClass* tsi_T1GetGlyphByIndex(T1Class* t, int32_t index, uint16_t* outAdvance);
GlyphClass* tsi_T1GetGlyphByCode(T1Class* t, uint32_t code, uint16_t* outAdvance);
uint16_t tsi_T1GetGlyphIndex(const T1Class* t, uint32_t code);  // 0 if no glyph has the code

void tsi_T1GetMetrics(const T1Class* t, int32_t* ascent, int32_t* descent, int32_t* lineGap, int32_t* maxAdvance,
                      int32_t* caretRise, int32_t* caretRun);

// For opening: the next two are the steps of it that have files of their own.

// Decrypts in place from begin on; returns where the plain bytes end.
uint32_t DecryptEexec(tsiMemObject* mem, uint8_t* bytes, uint32_t begin, uint32_t length);
// Runs a glyph's program: outline, side bearing and width. The glyph belongs to the caller.
GlyphClass* RunGlyphProgram(T1Class* t, int32_t index);

// The code of a glyph name in the Standard encoding, 65535 if it isn't in it.
uint16_t StandardCodeOfName(const char* name, uint32_t length);
