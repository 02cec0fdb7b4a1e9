// The fonts of one library and what is known of their names; hsgfontregistry.h works on it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "gfx/text/hsgfontregistry.h"

struct hsGFontSet {
  std::vector<hsRef<hsGFontScaler>> fFonts;
  // By kind: a name in lower case to the font's identifier, or to -1 for a name that no font has.
  std::map<std::string, int32_t> fNames[kFontNameKinds];
  uint32_t fLastID = 0;
  bool fLoaded = false;
  bool fScanFolder = false;
  const hsGFontFileEntry* fFiles = nullptr;
  uint32_t fFileCount = 0;
  const hsGFontMemoryEntry* fMemory = nullptr;
  uint32_t fMemoryCount = 0;
  const char* const* fPreferred = nullptr;
  hsCharMapper fMapper = nullptr;
};
