#include "gfx/text/hsgglyphcache.h"

#include <memory>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsglibrary.h"
#include "gfx/text/hsgstrike.h"

hsGGlyphCache* hsGGlyphCache::Instance() {
  std::unique_ptr<hsGGlyphCache>& cache = hsGLibrary::Current().fGlyphCache;
  if (!cache) cache = std::make_unique<hsGGlyphCache>();
  return cache.get();
}

hsGGlyphCache::~hsGGlyphCache() {
  Purge();
  hsAssert(fCount == 0, "strikecount out of sync");
}

void hsGGlyphCache::Shutdown() {
  hsGLibrary& library = hsGLibrary::Current();
  if (!library.fGlyphCache) return;
  library.fGlyphCache.reset();
  library.fGlyphBytes = 0;
  hsPrintStatus("deleting glyph cache\n");
}

void hsGGlyphCache::NoteImage(uint32_t size) {
  uint32_t& bytes = hsGLibrary::Current().fGlyphBytes;
  bytes += size;
  if (bytes <= kGlyphBudget) return;
  hsPrintStatus("glyph cache exceeded %xH bytes with %d elements\n", bytes, Instance()->fCount);
}

uint32_t hsGGlyphCache::ImageBytes() { return hsGLibrary::Current().fGlyphBytes; }

hsGStrike* hsGGlyphCache::Take(const hsDescriptor* desc) {
  for (hsGStrike* strike = fHead; strike; strike = strike->fNext) {
    if (!hsDescriptor::Equal(strike->fDesc.get(), desc)) continue;
    Remove(strike);
    return strike;
  }
  return nullptr;
}

void hsGGlyphCache::Insert(hsGStrike* strike) {
  if (!hsAssert(strike, "need strike")) return;
  if (!hsAssert(!strike->fPrev, "need fPrev == nil") || !hsAssert(!strike->fNext, "need fNext == nil")) return;
  Check();
  if (fCount >= kMostStrikes) Purge();
  strike->fNext = fHead;
  if (fHead) fHead->fPrev = strike;
  fHead = strike;
  ++fCount;
  Check();
  if (strike->fPurgeOnRelease) Purge();
}

void hsGGlyphCache::Remove(hsGStrike* strike) {
  if (!hsAssert(strike, "need strike") || !hsAssert(fCount > 0, "bad strikecount")) return;
  if (!hsAssert(fHead, "bad strikehead")) return;
  Check();
  if (strike->fNext) strike->fNext->fPrev = strike->fPrev;
  if (strike->fPrev) {
    strike->fPrev->fNext = strike->fNext;
  } else {
    fHead = strike->fNext;
  }
  strike->fNext = strike->fPrev = nullptr;
  --fCount;
  Check();
}

bool hsGGlyphCache::Purge() {
  hsGStrike* strike = fHead;
  while (strike && strike->fNext) strike = strike->fNext;
  bool any = false;
  while (strike) {
    hsGStrike* previous = strike->fPrev;
    if (strike->fRefCnt == 1) {
      Remove(strike);
      delete strike;
      any = true;
    }
    strike = previous;
  }
  if (any) ++hsGLibrary::Current().fGlyphPurges;
  return any;
}

void hsGGlyphCache::Check() const {
  hsAssert((fCount == 0) == (fHead == nullptr), "bad header");
  hsAssert(!fHead || !fHead->fPrev, "need prev == nil");
  int32_t count = 0;
  for (const hsGStrike* strike = fHead; strike; strike = strike->fNext, ++count)
    hsAssert(!strike->fNext || strike->fNext->fPrev == strike, "bad next");
  hsAssert(count == fCount, "bad count");
}
