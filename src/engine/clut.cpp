#include "engine/clut.h"

#include <array>
#include <memory>
#include <vector>

#include "engine/ascii.h"
#include "engine/core.h"
#include "engine/display.h"
#include "gfx/pixel/hsgcolortable.h"
#include "host/host.h"

namespace {

constexpr size_t kMaxColors = 240;
constexpr size_t kTransparentIndex = 237;

std::vector<std::unique_ptr<Clut>> cluts;

uint32_t big32(const uint8_t* p) { return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3]; }

// One byte that says nothing, then four a colour, big-endian.
void readColors(HostFile* file, Clut* clut) {
  std::array<uint8_t, 1 + 4 * kMaxColors> bytes;  // whatever follows is passed over
  const size_t size = hostRead(file, bytes.data(), bytes.size());
  clut->count = size == 0 ? 0 : int((size - 1) / 4);
  for (size_t i = 0; i < size_t(clut->count); ++i) clut->colors[i] = big32(bytes.data() + 1 + i * 4);
  clut->colors[kTransparentIndex] = 0;
}

}  // namespace

Clut::Clut() : colorTable(new hsGColorTable) {}

Clut::~Clut() { colorTable->UnRef(); }

void clutFinish(Clut* clut) {
  std::array<hsGColor32, hsGColorTable::kMaxCount> converted;
  for (size_t i = 0; i < converted.size(); ++i) converted[i] = 0xFF000000 | clut->colors[i] >> 8;
  clut->colorTable->SetCount(uint32_t(clut->count));
  clut->colorTable->SetColors(0, uint32_t(clut->count), converted.data());
}

Clut* clutLoad(const char* fileName) {
  for (const auto& clut : cluts)
    if (asciiEqualIgnoringCase(clut->name.c_str(), fileName)) return clut.get();
  hostLog("Loading CLUT '%s'\n", fileName);
  HostFile* file = hostOpen(fileName);
  if (!file) {
    if (logVerbose) hostLog("Can't find: %s\n", fileName);
    return nullptr;
  }
  auto clut = std::make_unique<Clut>();
  clut->name = fileName;
  readColors(file, clut.get());
  hostClose(file);
  clutFinish(clut.get());
  cluts.push_back(std::move(clut));
  return cluts.back().get();
}

void clutActivate(Clut* clut) {
  if (displaySetColorTable(clut->colorTable)) hostSetPalette(clut->colors.data(), clut->count);
}

void clutsFree() { cluts.clear(); }
