// What the graphics library remembers between calls: fonts, strikes, open font engines, numbers of create procs.
//
// The functions that reach this state take no library; they act on the one that is current on the calling thread. An
// engine owns a library and makes it current around its work. A thread that has set none has one of its own, so a
// program that only draws need not know of this class. One library is used by one thread at a time.
//
// Declared here, below all its users; gfx/text, which knows the types of the fields, defines the members.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

class hsGGlyphCache;
class hsGSizedFlattenable;
class hsGT2KRef;
struct hsGFontSet;

class hsGLibrary {
 public:
  hsGLibrary();
  // Does what hsGGlyphCache::Shutdown does, its line on standard output included, then lets go of the fonts.
  ~hsGLibrary();
  hsGLibrary(const hsGLibrary&) = delete;
  hsGLibrary& operator=(const hsGLibrary&) = delete;

  static hsGLibrary& Current();
  // Null for the thread's own library. Returns what was set before.
  static hsGLibrary* SetCurrent(hsGLibrary* library);

  // For the library's own files, each of which keeps one field.
  std::unique_ptr<hsGFontSet> fFonts;          // hsgfontregistry.h
  std::unique_ptr<hsGGlyphCache> fGlyphCache;  // hsgglyphcache.h; null until it is asked for
  uint32_t fGlyphPurges = 0;                   // hsgglyphcache.h: how often strikes were deleted from a cache
  uint32_t fGlyphBytes = 0;                    // hsgglyphcache.h: of images since the cache was made
  std::vector<hsGT2KRef*> fT2KRefs;            // hsgt2kref.h; each leaves the list with its last reference
  std::vector<hsGSizedFlattenable* (*)(const void** cursor, int32_t size)> fCreateProcs;  // hsgcreateproc.h
};

// Makes a library current on this thread for the length of a scope.
class hsGLibraryScope {
 public:
  explicit hsGLibraryScope(hsGLibrary& library) : fBefore(hsGLibrary::SetCurrent(&library)) {}
  ~hsGLibraryScope() { hsGLibrary::SetCurrent(fBefore); }
  hsGLibraryScope(const hsGLibraryScope&) = delete;
  hsGLibraryScope& operator=(const hsGLibraryScope&) = delete;

 private:
  hsGLibrary* fBefore;
};
