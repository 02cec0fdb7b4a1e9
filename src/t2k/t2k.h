// The scaler: one font at one scale and transformation, a glyph at a time.
//
//   int err;
//   tsiMemObject* mem = tsi_NewMemhandler(&err);
//   InputStream* in = New_InputStream3(mem, bytes, length, &err);
//   sfntClass* font = New_sfntClass(mem, kFontTypeSfnt, 0, in, nullptr, &err);
//   T2K* t = NewT2K(mem, font, &err);
//   T2K_NewTransformation(t, true, 72, 72, &matrix, &err);
//   T2K_RenderGlyph(t, 'g', 0, 0, 3, kT2KGridFit | kT2KBitmap, &err);   // then read t's fields
//   T2K_PurgeMemory(t, 1, &err);
//   DeleteT2K(t, &err);  Delete_sfntClass(font, &err);  Delete_InputStream(in, &err);  tsi_DeleteMemhandler(mem);
//
// Coordinates are 26.6 with Y up, unless said to be 16.16. An error in any call but a Delete finishes the font: see
// tsimem.h. Nulls in place of a T2K are answered with kT2KNullHandler.
#pragma once

#include "gfx/foundation/hstypes.h"
#include "t2k/scanbitmap.h"
#include "t2k/truetype.h"

struct HinterClass;

// x' = t00 x + t01 y, y' = t10 x + t11 y; 16.16, the point size folded in.
struct T2KMatrix {
  hsFixed t00, t01, t10, t11;
};

enum T2KCommand : int {
  kT2KGridFit = 1,
  kT2KBitmap = 2,
  kT2KKeepGlyph = 4,    // the outline stays in T2K::glyph
  kT2KByIndex = 8,      // the code is a glyph index
  kT2KNoRounding = 16,  // neither rounded advances nor grid fitting
  kT2KBoundsOnly = 32,  // with kT2KBitmap: size and place, no bits
};

inline constexpr int kKernCacheSize = 149;

struct T2K {
  uint32_t stamp1;  // kScalerStamp1
  tsiMemObject* mem;

  // What of the transformation remains once the pixel sizes are taken out of it, 16.16.
  hsFixed t00, t01, t10, t11;
  bool is_Identity;

  // 16.16 pixels.
  hsFixed xAscender, yAscender, xDescender, yDescender, xLineGap, yLineGap;
  hsFixed xMaxLinearAdvanceWidth, yMaxLinearAdvanceWidth;
  hsFixed caretDx, caretDy;  // a direction only

  int numGlyphs;
  GlyphClass* glyph;  // of the last render, null once purged

  hsFixed xLinearAdvanceWidth16Dot16, yLinearAdvanceWidth16Dot16;  // without hinting
  hsFixed xAdvanceWidth16Dot16, yAdvanceWidth16Dot16;              // after grid fitting and rounding

  // The bitmap, in pixels from the top row down; its place relative to the pen.
  int width, height;
  int32_t fTop26Dot6, fLeft26Dot6;
  int rowBytes;
  uint8_t* baseAddr;   // null if there is none
  T2KRows bitmapRows;  // which the next bitmap is to have; width and height stay those of the whole

  int xPixelsPerEm, yPixelsPerEm;  // rounded; outlines are scaled by these
  hsFixed xPixelsPerEm16Dot16, yPixelsPerEm16Dot16;
  hsFixed xMul, yMul;  // pixels a font unit, 16.16

  int ag_xPixelsPerEm, ag_yPixelsPerEm;  // what the hinter is set up for, -1 for nothing
  bool ag_sharpen;                       // it wants grey sharpened at this size
  HinterClass* hintHandle;

  sfntClass* font;

  struct {
    uint32_t key[kKernCacheSize];     // previous character and this one; all ones, which two 0xFFFF match, at first
    int32_t advance[kKernCacheSize];  // kerning included
    int32_t kern[kKernCacheSize];
  } kernCache;

  uint32_t stamp2;  // kScalerStamp2
};

inline constexpr uint32_t kScalerStamp1 = 0x5A1234A5;
inline constexpr uint32_t kScalerStamp2 = 0xA5FEDC5A;

// Null on failure. The font stays the caller's.
T2K* NewT2K(tsiMemObject* mem, sfntClass* font, int* errCode);
void DeleteT2K(T2K* t, int* errCode);

// xRes and yRes: dots an inch, 72 making a point a pixel. With doSetUpNow the hinter is made ready too.
void T2K_NewTransformation(T2K* t, bool doSetUpNow, int xRes, int yRes, const T2KMatrix* matrix, int* errCode);

// Renders a character, or a glyph by its index, under cmd (T2KCommand bits). greyScaleLevel 0 is monochrome, 1 to 5
// grey with so many lines a pixel; the pen may lie xFracPenDelta, yFracPenDelta (0..63, 26.6) beyond its pixel.
void T2K_RenderGlyph(T2K* t, int32_t code, int xFracPenDelta, int yFracPenDelta, int greyScaleLevel, int cmd,
                     int* errCode);

// Level 0 frees the glyph, 1 also the bitmap, 2 also the hinter.
void T2K_PurgeMemory(T2K* t, int level, int* errCode);

// The advance of count 16-bit characters with kerning, 16.16 pixels; the first is kerned against a blank. kernOut, if
// given, gets the kerning before each character in font units. 0 on failure.
hsFixed T2K_MeasureTextInX(T2K* t, const uint16_t* text, int16_t* kernOut, uint32_t count);

// 0 for a character without a glyph, and on failure.
uint16_t T2K_GetGlyphIndex(T2K* t, uint32_t code);
