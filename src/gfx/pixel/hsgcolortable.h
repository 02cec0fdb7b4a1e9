// A shared palette, and the way back from a colour to the nearest index.
//
// The way back is a table of 4096 cells, built when it is first needed: it costs a walk over the palette for each
// cell, and any change of a colour throws it away.
#pragma once

#include <array>
#include <memory>

#include "gfx/foundation/hsrefcnt.h"
#include "gfx/pixel/hsgcolor.h"

class hsGColorTable : public hsRefCnt {
 public:
  static constexpr uint32_t kMaxCount = 256;
  static constexpr int32_t kInverseSize = 4096;

  hsGColorTable() = default;
  // With an inverse table of 4096 bytes that no change of colours will throw away.
  explicit hsGColorTable(const uint8_t inverse[]);

  // More than 256 is reported, "bad count for ColorTable", and cut. Another count than the present one clears the
  // colours.
  void SetCount(uint32_t count);
  // "bad params in ColorTable::SetColors" beyond the count; what lies inside is then set all the same.
  void SetColors(uint32_t start, uint32_t count, const hsGColor32 colors[]);
  uint32_t GetCount() const { return fCount; }

  const hsGColor32* IndexToColor(uint32_t index) const;  // null beyond the count, "bad IndexToColor param"
  uint8_t ColorToIndex(const hsGColor& color) const { return GetInverseTable()[hsInverseCell(hsNarrowColor(color))]; }

  // 256 entries, all zero from the count on, so that any index may be looked up.
  const hsGColor32* Colors() const { return fColors.data(); }
  // By hsInverseCell. The lowest index wins a tie.
  const uint8_t* GetInverseTable() const { return fInverse ? fInverse.get() : BuildInverse(); }

  // The same object, or the same count and entries.
  static bool Equal(const hsGColorTable* a, const hsGColorTable* b);

  // A cube of six levels a channel with primaries and greys in between.
  void SetDefaultCube();
  // Three bits of red, three of green and two of blue, with an inverse that is computed, not searched.
  void SetDefault332();

 private:
  const uint8_t* BuildInverse() const;
  void ForgetInverse();

  bool fFixedInverse = false;
  uint32_t fCount = 0;
  std::array<hsGColor32, kMaxCount> fColors{};
  mutable std::unique_ptr<uint8_t[]> fInverse;
};
