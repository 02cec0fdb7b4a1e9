#include "gfx/foundation/hsglibrary.h"

#include <pthread.h>

#include <memory>
#include <system_error>
#include <utility>

#include "gfx/text/hsgfontset.h"
#include "gfx/text/hsgglyphcache.h"

namespace {

thread_local hsGLibrary* tCurrent = nullptr;  // which library a thread works for is a fact of the thread

// The libraries of threads that set none: each goes at its thread's end, without a line on standard output. The main
// thread's goes with the program. They are no thread_local objects, since MinGW frees a thread's variables before it
// destroys them.
pthread_key_t makeOwnLibraries() {
  pthread_key_t key;
  const int error = pthread_key_create(&key, [](void* own) {
    const std::unique_ptr<hsGLibrary> library(static_cast<hsGLibrary*>(own));
    const hsGLibraryScope scope(*library);
    library->fGlyphCache.reset();
  });
  if (error != 0) throw std::system_error(error, std::generic_category());
  return key;
}

hsGLibrary& ownLibrary() {
  static const pthread_key_t key = makeOwnLibraries();
  if (void* own = pthread_getspecific(key)) return *static_cast<hsGLibrary*>(own);
  auto made = std::make_unique<hsGLibrary>();
  if (const int error = pthread_setspecific(key, made.get())) throw std::system_error(error, std::generic_category());
  return *made.release();
}

}  // namespace

hsGLibrary::hsGLibrary() : fFonts(std::make_unique<hsGFontSet>()) {}

hsGLibrary::~hsGLibrary() {
  const hsGLibraryScope scope(*this);  // strikes return their font engines to the library that is current
  hsGGlyphCache::Shutdown();
}

hsGLibrary& hsGLibrary::Current() { return tCurrent ? *tCurrent : ownLibrary(); }

hsGLibrary* hsGLibrary::SetCurrent(hsGLibrary* library) { return std::exchange(tCurrent, library); }
