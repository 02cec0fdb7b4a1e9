// The strikes that nobody uses at the moment, the latest released first.
//
// Its budget warns and doesn't bind: an image beyond it is reported on standard output each time, and the cache goes on
// growing. What does bind is the number of strikes: one too many empties the list.
#pragma once

#include <cstdint>

#include "gfx/foundation/hsdescriptor.h"

class hsGStrike;

class hsGGlyphCache {
 public:
  static constexpr int32_t kMostStrikes = 128;
  static constexpr uint32_t kGlyphBudget = 0x19000;  // bytes of images

  hsGGlyphCache() = default;
  ~hsGGlyphCache();
  hsGGlyphCache(const hsGGlyphCache&) = delete;
  hsGGlyphCache& operator=(const hsGGlyphCache&) = delete;

  // Of the current library; made on first use.
  static hsGGlyphCache* Instance();
  // Deletes the cache and the strikes in it; those in use stay with their users.
  static void Shutdown();
  // Counts an image that is about to be allocated.
  static void NoteImage(uint32_t size);
  static uint32_t ImageBytes();  // the running total

  int32_t Count() const { return fCount; }
  // The strike of a descriptor, out of the list; null without one.
  hsGStrike* Take(const hsDescriptor* desc);
  void Insert(hsGStrike* strike);
  // Whether anything went.
  bool Purge();

 private:
  void Remove(hsGStrike* strike);
  void Check() const;

  int32_t fCount = 0;
  hsGStrike* fHead = nullptr;
};
