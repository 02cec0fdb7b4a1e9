// What measures a strike's glyphs, renders them and makes their outlines.
//
// The base carries what is alike for all kinds of font: outlining, path effects and rasterizers, which work on the
// outlines that the kind makes, and mask filters, which work on images however they were made. A context is made from
// the strike's descriptor and lives with the strike.
#pragma once

#include "gfx/foundation/hsdescriptor.h"
#include "gfx/foundation/hsmatrix.h"
#include "gfx/foundation/hsref.h"
#include "gfx/text/hsgglyph.h"

class hsGAttribute;
class hsGMaskFilter;
class hsGPathEffect;
class hsGRasterizer;
class hsPath;
struct hsGMask;

inline constexpr uint32_t kRecord_FontScaler = hsTag("Sclr");      // 4 bytes, an hsGScalerKind
inline constexpr uint32_t kRecord_FontScalerDesc = hsTag("TRec");  // an hsGScalerRecord
// Effects: the number of the create procedure, and what Flatten wrote.
inline constexpr uint32_t kRecord_PathEffect = hsTag("PEff");
inline constexpr uint32_t kRecord_Rasterizer = hsTag("Rast");
inline constexpr uint32_t kRecord_MaskFilter = hsTag("MskF");

enum hsGScalerKind : uint32_t {
  kScaler_None = 0,
  kScaler_Registered = 1,  // a font of the registry, by its format
};

struct hsGScalerRecord {
  enum Flags : uint16_t {  // the low half of the attribute's
    kAntiAlias = 0x1,
    kLinearAdvances = 0x40,
    kNoGridFit = 0x80,
    kLCDAllowed = 0x1000,
  };

  uint32_t fFontID;
  hsFixed fTextSize;
  hsMatrix fMatrix;  // without translation
  uint16_t fFlags;
  uint16_t fEncoding;
  hsFixed fSizeRatio;
  uint32_t fOutlineStyle;  // hsGAttribute::GetCapJoinStyle
  hsFixed fOutlineMiter;
  hsFixed fOutlineWidth;  // a fraction of the text size
};
static_assert(sizeof(hsGScalerRecord) == 0x40);

class hsGScalerContext {
 public:
  // The context of a descriptor; null for one that names no scaler. "need kRecord_FontScalerDesc".
  static hsGScalerContext* Create(const hsDescriptor* desc);

  explicit hsGScalerContext(const hsDescriptor* desc);
  hsGScalerContext(const hsGScalerContext&) = delete;
  hsGScalerContext& operator=(const hsGScalerContext&) = delete;
  virtual ~hsGScalerContext();

  uint8_t MaskType() const { return fMaskType; }
  bool DoesKerning() const { return fDoesKerning; }
  const hsGScalerRecord& Record() const { return fRecord; }

  // Size, place, advance and row bytes of the glyph whose fCharCode is set.
  void Measure(hsGGlyph* glyph);
  // The image of a measured glyph; false if it couldn't be rendered.
  bool GetImage(const hsGGlyph& glyph, uint8_t* buffer);
  // Some rows of the image alone. False also for a context that makes images whole only.
  bool GetRows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer);
  // The outline on the device, from the pen.
  void GetOutline(const hsGGlyph& glyph, hsPath* path);

  // Points on the device relative to the pen, y downward; any may be null. baseline is a unit vector.
  virtual void GetFontMetrics(hsPoint* ascent, hsPoint* descent, hsPoint* baseline) = 0;
  // Moves count + 1 positions, and the advances of the glyphs if given, for pairs that kern.
  virtual void KernGlyphs(uint32_t count, const uint16_t chars[], hsGGlyph glyphs[], hsPoint positions[]);

 protected:
  virtual void GenerateMetrics(hsGGlyph* glyph) = 0;
  virtual bool GenerateImage(const hsGGlyph& glyph, uint8_t* buffer) = 0;
  virtual bool GenerateRows(const hsGGlyph&, int /*first*/, int /*count*/, uint8_t* /*buffer*/) { return false; }
  virtual void GeneratePath(const hsGGlyph& glyph, hsPath* path) = 0;

  hsGScalerRecord fRecord{};
  uint8_t fMaskType = 0;  // hsMaskType
  bool fDoesKerning = false;

 private:
  void MeasureUnfiltered(hsGGlyph* glyph);
  void StrokedOutline(const hsGGlyph& glyph, hsPath* path);
  bool RenderUnfiltered(const hsGGlyph& glyph, uint8_t* buffer);
  bool RenderOutline(const hsGGlyph& glyph, uint8_t* buffer);
  bool RenderFiltered(const hsGGlyph& glyph, uint8_t* buffer);

  hsRef<hsGPathEffect> fPathEffect;
  hsRef<hsGRasterizer> fRasterizer;
  hsRef<hsGMaskFilter> fMaskFilter;
  hsDescriptor* fStrokeDesc = nullptr;  // of the plain font, for glyphs that are drawn by their outlines; or null
};
