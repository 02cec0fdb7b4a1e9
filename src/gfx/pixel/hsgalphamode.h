// Transfer modes for planes of coverage: how two coverages combine.
#pragma once

#include "gfx/pixel/hsgxfermode.h"

class hsGAlphaCompositeMode : public hsGXferMode {
 public:
  // The name under which modes of this class are described.
  static constexpr const char kClassName[] = "alphaMode";

  // As they are numbered; their words are the names without the k.
  enum Mode : uint32_t { kClear, kSrc, kSrcOver, kDstOver, kSrcIn, kDstIn, kSrcOut, kDstOut };

  // The mode of that number; kSrcOver is the class of that name. null beyond them. The caller holds a reference.
  static hsGXferMode* Create(uint32_t index);
  // The mode whose word lies under "mode"; null for another word or none.
  static hsGXferMode* Create(const hsMeta& meta);

  // One of the modes that have a formula, "missing proc": not kClear and not kSrcOver.
  explicit hsGAlphaCompositeMode(uint32_t index);

  void Describe(hsMeta* meta) const override;
  // These report "bad device for alpha mode" and draw nothing.
  void Xfer32(int32_t count, const hsGColor32* src, hsGColor32* dst, const uint8_t* alpha) override;
  void Xfer16(int32_t count, const hsGColor32* src, uint16_t* dst, const uint8_t* alpha) override;
  void Xfer8(int32_t count, const hsGColor32* src, uint8_t* dst, const hsGColorTable* table,
             const uint8_t* alpha) override;
  void XferA(int32_t count, const uint8_t* src, uint8_t* dst, const uint8_t* alpha) override;

 protected:
  struct ClearTag {};
  explicit hsGAlphaCompositeMode(ClearTag) : fMode(kClear) {}

 private:
  uint32_t fMode;
};
