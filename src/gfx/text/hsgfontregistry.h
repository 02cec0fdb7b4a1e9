// The fonts known to the program, in order of registration.
//
// On first use it takes what SetFontFiles or, failing that, SetFontMemory has stored, and then, if asked to, the font
// folder of the desktop. An unknown font is answered by the default one: a preferred one by name, else the first.
#pragma once

#include "gfx/text/hsgfontscaler.h"

struct hsGFontFileEntry {
  const char* fPath;
  uint32_t fFormat;  // 0 for kFontFormat_TrueType
};
struct hsGFontMemoryEntry {
  uint32_t fSize;
  const void* fData;
  uint32_t fFormat;
};

// Turns a 16-bit code into the 8-bit one of a font without a Unicode map.
using hsCharMapper = uint16_t (*)(uint16_t code);

namespace hsGFontRegistry {

// Each returns the new font's identifier, 0 on failure. A format of 0 means kFontFormat_TrueType. Every change of the
// registry empties the glyph cache.
//
// Files are read whole; the stream from its position, and it stays the caller's. Files of a list or of the folder
// are read piece by piece when they are used.
uint32_t RegisterFile(const char* path, uint32_t format);
uint32_t RegisterStream(std::FILE* file, uint32_t format);
uint32_t RegisterMemory(uint32_t size, const void* data, bool owned, uint32_t format);
void UnregisterFont(uint32_t id);

// Lists for the next load; they stay the caller's. A count of all ones: up to a null entry.
void SetFontFiles(const hsGFontFileEntry* list, uint32_t count);
void SetFontMemory(const hsGFontMemoryEntry* list, uint32_t count);
// Names of fonts, up to null, any of which is to be the default.
void SetPreferredNames(const char* const* names);
void SetScanFolder(bool scan);  // off unless set
// Forgets all fonts, so that the next use loads.
void Reset();

// 0 for no such font.
uint32_t FindFontID(uint32_t nameKind, const char* name);
uint32_t GetFontName(uint32_t id, uint32_t nameKind, char buffer[]);
// Throws when there is no font at all.
hsGFontScaler* GetFontByID(uint32_t id);
bool IsFontID(uint32_t id);
uint32_t FontCount();
hsGFontScaler* FontAtIndex(uint32_t index);  // null beyond the last

void SetCharMapper(hsCharMapper mapper);
hsCharMapper CharMapper();

}  // namespace hsGFontRegistry
