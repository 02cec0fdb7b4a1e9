#include "gfx/foundation/hsglibrary.h"

#include <utility>

#include "gfx/text/hsgfontset.h"
#include "gfx/text/hsgglyphcache.h"

namespace {

thread_local hsGLibrary* tCurrent = nullptr;  // which library a thread works for is a fact of the thread

// The library of a thread that sets none. It goes without a line on standard output.
struct OwnLibrary {
  ~OwnLibrary() {
    const hsGLibraryScope scope(library);
    library.fGlyphCache.reset();
  }
  hsGLibrary library;
};

}  // namespace

hsGLibrary::hsGLibrary() : fFonts(std::make_unique<hsGFontSet>()) {}

hsGLibrary::~hsGLibrary() {
  const hsGLibraryScope scope(*this);  // strikes return their font engines to the library that is current
  hsGGlyphCache::Shutdown();
}

hsGLibrary& hsGLibrary::Current() {
  if (tCurrent) return *tCurrent;
  thread_local OwnLibrary own;  // for programs without an engine
  return own.library;
}

hsGLibrary* hsGLibrary::SetCurrent(hsGLibrary* library) { return std::exchange(tCurrent, library); }
