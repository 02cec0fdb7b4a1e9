// The paint: how to fill or stroke, in what colour, with which text settings and effects.
//
// It keeps the last blitter and the last strike descriptor, so that a drawing call can start at once. Each setter drops
// exactly what depends on its value; a value that is no good is reported and changes nothing. A change of colour drops
// nothing: the blitter compares what it needs when it is asked to do again.
#pragma once

#include <memory>

#include "gfx/foundation/hsmatrix.h"
#include "gfx/foundation/hsrefcnt.h"
#include "gfx/pixel/hsgcolor.h"
#include "gfx/pixel/hsgtextface.h"

class hsGBitmap;
class hsGBlitter;
class hsGMaskFilter;
class hsGPathEffect;
class hsGRasterizer;
class hsGLayerFilter;
class hsGScalerContext;
class hsGShader;
class hsGSizedFlattenable;
class hsGTextContext;
class hsGXferMode;
class hsPath;
struct hsDescriptor;
struct hsGScalerRecord;

class hsGAttribute : public hsRefCnt {
 public:
  enum Flags : uint32_t {
    kAntiAlias = 0x1,
    kFrame = 0x2,          // stroke the outline instead of filling
    kFilterBitmaps = 0x4,  // bilinearly
    kKernText = 0x10,
    kTextAsPaths = 0x20,
    kLinearText = 0x40,  // linear advances
    kNoGridFit = 0x80,
    kLCDText = 0x1000,  // LCD masks are allowed
    kColorIndexInForce = 0x2000,
    kLayoutOnly = 0x10000,         // text is laid out but not drawn; only a constructor can set it
    kGrowEmptyRects = 0x80000000,  // a filled rectangle that rounds to nothing still paints one pixel each way
  };
  enum CapType : uint8_t { kButtCap = 0, kRoundCap = 1, kSquareCap = 2 };
  enum JoinType : uint8_t { kMiterJoin = 0, kRoundJoin = 1, kBevelJoin = 2 };
  enum TextEncoding : uint8_t { kSingleBytes = 0, kUTF8 = 1, kUTF16 = 2 };

  explicit hsGAttribute(uint32_t flags = 0);  // the flags are not checked
  hsGAttribute(const hsGAttribute&) = delete;
  hsGAttribute& operator=(const hsGAttribute&) = delete;
  ~hsGAttribute() override;

  // Everything but the caches.
  void CopyFrom(const hsGAttribute& other);
  // A copy for text of that size, its path effect, rasterizer and mask filter rebuilt for it where they can be; a size
  // below 1 is the text size. The caller holds a reference.
  hsGAttribute* MakeCopyForScale(int32_t size) const;

  // The number of the effect's create procedure ("need create-proc") and the effect's own bytes, into buffer if that is
  // given. Returns the number of bytes that it takes.
  static int32_t FlattenEffect(const hsGSizedFlattenable& effect, void* buffer);

  uint32_t Flags() const { return fFlags; }
  void SetFlags(uint32_t flags);
  const hsGColor& Color() const { return fColor; }
  void SetColor(const hsGColor* color);
  void SetColor(uint16_t a, uint16_t r, uint16_t g, uint16_t b) { fColor = {a, r, g, b}; }
  // A palette index for 8-bit devices, which then draw it whatever the colour; negative for none.
  int32_t ColorIndex() const { return fFlags & kColorIndexInForce ? fColorIndex : -1; }
  void SetColorIndex(int32_t index);

  hsFixed FrameSize() const { return fFrameSize; }
  void SetFrameSize(hsFixed width);  // pixels of user space; 0 draws hairlines
  hsFixed MiterLimit() const { return fMiterLimit; }
  void SetMiterLimit(hsFixed limit);
  hsFixed MinWidth() const { return fMinWidth; }
  void SetMinWidth(hsFixed width);  // of a stroke on the device
  uint8_t Cap() const { return fCapType; }
  void SetCapType(uint32_t cap);
  uint8_t Join() const { return fJoinType; }
  void SetJoinType(uint32_t join);
  // Cap and join in one number: 4 round cap, 8 square cap, 1 round join, 2 bevel join.
  uint32_t GetCapJoinStyle() const;
  void SetCapJoin(uint32_t style);
  // The width to stroke with, in user space: as much as the minimum width asks for under the matrix.
  hsFixed GetStrokeWidth(const hsMatrix* matrix) const;

  hsFixed TextSize() const { return fTextSize; }
  void SetTextSize(hsFixed size);
  uint8_t Encoding() const { return fTextEncoding; }
  void SetTextEncoding(uint32_t encoding);
  uint32_t FontID() const { return fFontID; }
  void SetFontID(uint32_t font);
  // False without one; else a copy goes to out, if given. Setting one that changes nothing, or null, is having none.
  bool GetTextFace(hsGTextFace* out) const;
  void SetTextFace(const hsGTextFace* face);
  bool GetTextSpacing(hsGTextSpacing* out) const;
  void SetTextSpacing(const hsGTextSpacing* spacing);

  hsGShader* Shader() const { return fShader.get(); }
  void SetShader(hsGShader* shader);
  hsGXferMode* XferMode() const { return fXferMode.get(); }
  void SetXferMode(hsGXferMode* mode);
  hsGMaskFilter* MaskFilter() const { return fMaskFilter.get(); }
  void SetMaskFilter(hsGMaskFilter* filter);
  hsGPathEffect* PathEffect() const { return fPathEffect.get(); }
  void SetPathEffect(hsGPathEffect* effect);
  hsGRasterizer* Rasterizer() const { return fRasterizer.get(); }
  void SetRasterizer(hsGRasterizer* rasterizer);
  hsGLayerFilter* LayerFilter() const { return fLayerFilter.get(); }
  void SetLayerFilter(hsGLayerFilter* filter);

  // Text of length bytes in the paint's encoding. An encoding alone that changes keeps the strike of the text before.
  //
  // The advance width, 16.16 pixels of user space, and the font's top and bottom from the baseline, if asked for.
  hsFixed MeasureText(uint32_t length, const void* text, hsPoint* outLeft, hsPoint* outRight);
  // One advance a character; returns their number.
  uint32_t GetTextWidths(uint32_t length, const void* text, hsFixed widths[]);
  // The rule under the text; no change without one.
  void GetUnderline(uint32_t length, const void* text, hsRect* rect);
  // Adds the outlines up to the first glyph that starts beyond limit, if that isn't negative. "inconsistent text
  // param".
  void GetTextPath(uint32_t length, const void* text, hsFixed limit, hsPath* path);
  // The number of characters. "unknown text-encoding".
  uint32_t CountText(uint32_t length, const void* text) const;
  // The entry to text under a matrix, null for the identity; the caller holds a reference.
  hsGTextContext* GetTextContext(const hsMatrix* matrix);
  // A new descriptor of the text state, with what is to be added to each advance and to each glyph's place.
  // "advance required", "glyphOffset required".
  hsDescriptor* MakeStrikeDesc(const hsMatrix* matrix, hsPoint* outAdvance, hsPoint* outOffset);
  // "BuildSimpleStrike called unnecessarily".
  void BuildSimpleStrike();
  // The descriptor of the fast text path: single bytes, no matrix, no face.
  const hsDescriptor* SimpleStrikeDesc();

  // The blitter of this paint on a bitmap, the last one made over if it will do; the caller holds a reference.
  hsGBlitter* GetBlitter(const hsGBitmap& bitmap, int32_t maskType, const hsMatrix& matrix);
  // The blitter that draws `source` under the matrix; the caller holds a reference.
  hsGBlitter* GetBitmapBlitter(const hsGBitmap& bitmap, int32_t maskType, const hsGBitmap& source,
                               const hsMatrix& matrix);

 private:
  void DropStrike();  // the descriptor of the full text state
  hsGScalerRecord PlainRecord();

  uint32_t fFlags;
  hsGColor fColor{0xFFFF, 0, 0, 0};
  hsFixed fFrameSize = 0;
  hsFixed fMiterLimit = 4 * kFixed1;
  hsFixed fMinWidth = 0;
  hsFixed fTextSize = 12 * kFixed1;
  uint8_t fCapType = kButtCap;
  uint8_t fJoinType = kMiterJoin;
  uint8_t fTextEncoding = kSingleBytes;
  uint8_t fColorIndex = 0;
  uint32_t fFontID = 0;
  std::unique_ptr<hsGTextFace> fTextFace;
  std::unique_ptr<hsGTextSpacing> fTextSpacing;

  hsRef<hsGShader> fShader;
  hsRef<hsGXferMode> fXferMode;
  hsRef<hsGMaskFilter> fMaskFilter;
  hsRef<hsGPathEffect> fPathEffect;
  hsRef<hsGRasterizer> fRasterizer;
  hsRef<hsGLayerFilter> fLayerFilter;

  hsRef<hsGBlitter> fCachedBlitter;
  uint32_t fResolvedFontID = 0;
  hsDescriptor* fStrikeDesc = nullptr;  // for fStrikeMatrix
  hsMatrix fStrikeMatrix;
  hsPoint fAdvanceScale{0, 0}, fOriginOffset{0, 0};
  bool fSimpleDirty = true;
  hsDescriptor* fSimpleDesc = nullptr;
};

// Sets or clears the frame flag for a scope, and puts the flags back.
class hsGFrameScope {
 public:
  hsGFrameScope(hsGAttribute* attr, bool frame) : fAttr(attr), fSaved(attr->Flags()) {
    attr->SetFlags(frame ? fSaved | hsGAttribute::kFrame : fSaved & ~hsGAttribute::kFrame);
  }
  ~hsGFrameScope() { fAttr->SetFlags(fSaved); }
  hsGFrameScope(const hsGFrameScope&) = delete;
  hsGFrameScope& operator=(const hsGFrameScope&) = delete;

 private:
  hsGAttribute* fAttr;
  uint32_t fSaved;
};
