#include "engine/screen/clut.h"

#include <algorithm>

#include "engine/base/hostfile.h"
#include "engine/base/log.h"
#include "engine/screen/display.h"
#include "engine/screen/standardcolor.h"
#include "gfx/foundation/hsascii.h"
#include "gfx/foundation/hsbytes.h"

namespace {

// One byte without a meaning, then four a colour, big-endian. What follows the last colour is ignored. False when the
// file breaks off before its end.
bool readColors(HostFile* file, Clut* clut) {
  std::array<uint8_t, 1 + 4 * kMaxClutColors> bytes;
  const size_t size = hostRead(file, bytes.data(), bytes.size());
  if (size != std::min(bytes.size(), hostFileSize(file))) return false;
  clut->count = size == 0 ? 0 : int((size - 1) / 4);
  for (size_t i = 0; i < size_t(clut->count); ++i) clut->colors[i] = hsBig32(bytes.data() + 1 + i * 4);
  clut->colors[kIndexTransparent] = 0;
  return true;
}

}  // namespace

void clutFinish(Clut* clut) {
  std::array<hsGColor32, hsGColorTable::kMaxCount> converted;
  for (size_t i = 0; i < converted.size(); ++i) converted[i] = 0xFF000000 | clut->colors[i] >> 8;
  clut->colorTable->SetCount(uint32_t(clut->count));
  clut->colorTable->SetColors(0, uint32_t(clut->count), converted.data());
}

Clut* ClutShelf::load(const char* fileName) {
  for (const auto& clut : cluts)
    if (hsAsciiEqualIgnoringCase(clut->name.c_str(), fileName)) return clut.get();
  hostLog("Loading CLUT '%s'\n", fileName);
  const HostFilePtr file = openHostFile(fileName);
  if (!file) {
    if (logVerbose) hostLog("Can't find: %s\n", fileName);
    return nullptr;
  }
  auto clut = std::make_unique<Clut>();
  clut->name = fileName;
  if (!readColors(file.get(), clut.get())) return nullptr;
  clutFinish(clut.get());
  cluts.push_back(std::move(clut));
  return cluts.back().get();
}

Clut* clutLoad(const char* fileName) { return currentCluts().load(fileName); }

void clutActivate(Clut* clut) {
  if (displaySetColorTable(clut->colorTable.get())) hostSetPalette(clut->colors.data(), clut->count);
}
