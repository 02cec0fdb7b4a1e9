#include "studio/memory/memorymeter.h"

#include <algorithm>
#include <utility>

#include "engine/page/frame.h"

namespace {

constexpr uint32_t kBetweenSamples = 20;  // milliseconds
constexpr size_t kMostThrownOut = 50;
constexpr uint32_t kOften = 3;  // from then on it is no accident

// From where on a memory is nearly used up.
bool isHigh(uint64_t used, uint64_t all) { return all > 0 && used * 100 >= all * 85; }

std::string share(uint64_t used, uint64_t all) {
  return std::to_string(used) + " of " + std::to_string(all) + " (" + std::to_string(used * 100 / all) + " %)";
}

// The most of both, at the time of the later one.
MemorySample peakOf(const MemorySample& a, const MemorySample& b) {
  return {b.time,
          std::max(a.heapBytes, b.heapBytes),
          std::max(a.stackWords, b.stackWords),
          b.collections,
          std::max(a.imageBytes, b.imageBytes),
          std::max(a.strikes, b.strikes),
          std::max(a.glyphBytes, b.glyphBytes),
          std::max(a.widgets, b.widgets)};
}

}  // namespace

void MemoryMeter::begin() { *this = MemoryMeter(most); }

void MemoryMeter::readHeap(Engine& engine) {
  const uint32_t collections = heapView.collections;
  heapView = inspectHeap(engine);
  if (std::exchange(hasReadHeap, true) && heapView.collections != collections) left = heapView.usedBytes;
  mostStack = std::max(mostStack, heapView.stackUsed);
  heapPeak = std::max(heapPeak, heapView.usedBytes);
  stackPeak = std::max(stackPeak, heapView.stackUsed);
}

void MemoryMeter::sampleScript(Engine& engine) { readHeap(engine); }

void MemoryMeter::sample(Engine& engine, uint32_t time, size_t widgets) {
  readHeap(engine);
  if (imagesChanged) imageView = inspectImageCache(engine);
  imagesChanged = false;
  glyphView = inspectGlyphCache(engine);
  now = {time,
         heapView.usedBytes,
         heapView.stackUsed,
         heapView.collections,
         imageView.blockBytes - imageView.freeBytes,
         glyphView.strikes,
         glyphView.imageBytes,
         uint32_t(widgets)};
  MemorySample peak = now;
  peak.heapBytes = std::exchange(heapPeak, 0);
  peak.stackWords = std::exchange(stackPeak, 0);
  if (!samples.empty() && time / kBetweenSamples == samples.back().time / kBetweenSamples) {
    samples.back() = peakOf(samples.back(), peak);
    return;
  }
  samples.push_back(peak);
  if (samples.size() > most) thinOut();
}

// Of the older half each two become one.
void MemoryMeter::thinOut() {
  const size_t half = samples.size() / 4 * 2;
  size_t to = 0;
  for (size_t from = 0; from < half; from += 2) samples[to++] = peakOf(samples[from], samples[from + 1]);
  samples.erase(samples.begin() + ptrdiff_t(to), samples.begin() + ptrdiff_t(half));
}

void MemoryMeter::imageLoaded(std::string_view name) {
  imagesChanged = true;
  if (onceThrownOut.contains(name)) ++timesReadAgain[std::string(name)];
}

void MemoryMeter::imageThrownOut(uint32_t time, std::string_view name, uint32_t bytes) {
  imagesChanged = true;
  onceThrownOut.emplace(name);
  lately.push_front({time, std::string(name), bytes});
  if (lately.size() > kMostThrownOut) lately.pop_back();
}

std::vector<MemoryWarning> MemoryMeter::warnings() const {
  std::vector<MemoryWarning> all;
  const auto warn = [&all](MemoryKind kind, std::string text) { all.push_back({kind, std::move(text)}); };
  if (left && isHigh(*left, heapView.spaceBytes))
    warn(MemoryKind::heap, "Bob's heap is nearly full: a collection has left " + share(*left, heapView.spaceBytes) +
                               " bytes in use. Scripts end with an error when nothing is free.");
  if (isHigh(mostStack, heapView.stackWords))
    warn(MemoryKind::stack,
         "Scripts nest too deep: they have used " + share(mostStack, heapView.stackWords) + " words of Bob's stack.");
  const uint32_t imageBytes = imageView.blockBytes - imageView.freeBytes;
  if (lately.empty() && isHigh(imageBytes, imageView.blockBytes))
    warn(MemoryKind::images, "The image memory is nearly full: " + share(imageBytes, imageView.blockBytes) +
                                 " bytes. What doesn't fit throws out the picture that was not used for longest.");
  for (const auto& [name, times] : timesReadAgain)
    if (times >= kOften)
      warn(MemoryKind::images, name + " was thrown out of the image memory and read again " + std::to_string(times) +
                                   " times: the pictures don't fit in there together.");
  if (isHigh(uint64_t(glyphView.strikes), uint64_t(glyphView.mostStrikes)))
    warn(MemoryKind::glyphs, "Texts come in too many fonts, sizes and looks: the glyph cache holds " +
                                 share(uint64_t(glyphView.strikes), uint64_t(glyphView.mostStrikes)) +
                                 " of them, and one too many empties it.");
  if (isHigh(glyphView.imageBytes, glyphView.budgetBytes))
    warn(MemoryKind::glyphs, "The images of glyphs have taken " + share(glyphView.imageBytes, glyphView.budgetBytes) +
                                 " bytes of their budget.");
  if (isHigh(now.widgets, kMaxPageWidgets))
    warn(MemoryKind::widgets,
         "There are very many widgets: " + share(now.widgets, kMaxPageWidgets) + " that a page can have.");
  return all;
}
