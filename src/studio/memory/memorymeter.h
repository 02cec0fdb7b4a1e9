// What a page needs of the player's memories, over time, and warnings before it is too much.
//
// The history is bounded: the older it is, the coarser it becomes, and no peak is lost. What surprises: dead objects
// fill Bob's heap until the next collection, so how full it is tells nothing; what a collection has left does.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/inspect.h"

// The most that there was since the sample before.
struct MemorySample {
  uint32_t time = 0;  // milliseconds of the player
  uint32_t heapBytes = 0, stackWords = 0, collections = 0;
  uint32_t imageBytes = 0;  // of the block, its table included
  int32_t strikes = 0;      // of the glyph cache
  uint32_t glyphBytes = 0;
  uint32_t widgets = 0;
};

struct ThrownOutImage {
  uint32_t time = 0;
  std::string name;
  uint32_t bytes = 0;
};

enum class MemoryKind { heap, stack, images, glyphs, widgets };

struct MemoryWarning {
  MemoryKind kind;
  std::string text;  // a sentence
};

class MemoryMeter {
 public:
  explicit MemoryMeter(size_t mostSamples = 1000) : most(mostSamples) {}

  // ---- to be shown

  const std::vector<MemorySample>& history() const { return samples; }
  const MemorySample& latest() const { return now; }
  const HeapView& heap() const { return heapView; }
  const ImageCacheView& images() const { return imageView; }
  const GlyphCacheView& glyphs() const { return glyphView; }
  // What a collection has left in the heap, as far as one has been seen.
  std::optional<uint32_t> heapAfterCollection() const { return left; }
  const std::deque<ThrownOutImage>& thrownOut() const { return lately; }  // the latest first
  std::vector<MemoryWarning> warnings() const;

  // ---- for who watches a run

  void begin();  // another run, whose time begins with 0
  void sample(Engine& engine, uint32_t time, size_t widgets);
  void sampleScript(Engine& engine);  // heap and stack, while a script runs
  void imageLoaded(std::string_view name);
  void imageThrownOut(uint32_t time, std::string_view name, uint32_t bytes);

 private:
  void readHeap(Engine& engine);
  void thinOut();

  size_t most;
  std::vector<MemorySample> samples;
  MemorySample now;                      // the last, as it was
  uint32_t heapPeak = 0, stackPeak = 0;  // since then
  HeapView heapView;
  ImageCacheView imageView;
  GlyphCacheView glyphView;
  std::optional<uint32_t> left;
  uint32_t mostStack = 0;  // words, ever in use while somebody looked
  bool hasReadHeap = false;
  bool imagesChanged = true;
  std::deque<ThrownOutImage> lately;
  std::set<std::string, std::less<>> onceThrownOut;
  std::map<std::string, uint32_t> timesReadAgain;
};
