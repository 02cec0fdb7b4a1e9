// What the meter says of pages that need much.
#include "studio/memory/memorymeter.h"

#include <algorithm>

#include "studio/studiofixture.h"

namespace {

class MemoryMeterTest : public WatchedSessionTest {
 protected:
  std::string warned(MemoryKind kind) {
    for (const MemoryWarning& warning : memory.warnings())
      if (warning.kind == kind) return warning.text;
    return "";
  }
};

constexpr char kPlain[] = "flags: 8bit\npage: {type: group, children: [{name: p, type: image, width: 9, height: 9}]}\n";

// What is thrown away is no reason to warn, what is kept is.
TEST_F(MemoryMeterTest, OnlyWhatStaysFillsTheHeap) {
  open(kPlain);
  type("define waste() { local i; for (i = 0; i < 20000; ++i) new Vector(20); }");
  type("waste();");
  ASSERT_GT(memory.heap().collections, 0u);
  EXPECT_EQ(warned(MemoryKind::heap), "");
  type("KOVA.kept = nil;");
  type(
      "define hoard(n) { local i, v; for (i = 0; i < n; ++i) { v = new Vector(20); v[0] = KOVA.kept; KOVA.kept = v; } "
      "}");
  for (int i = 0; i < 200 && warned(MemoryKind::heap).empty(); ++i) {
    type("hoard(20);");
    type("waste();");
    ASSERT_EQ(session->run()->log().find("Insufficient"), std::string::npos);
  }
  const uint32_t left = memory.heapAfterCollection().value_or(0);
  EXPECT_GE(left, memory.heap().spaceBytes * 85 / 100);
  EXPECT_NE(warned(MemoryKind::heap).find(std::to_string(left) + " of "), std::string::npos)
      << warned(MemoryKind::heap);

  ASSERT_TRUE(session->restart());
  EXPECT_EQ(warned(MemoryKind::heap), "");
  EXPECT_FALSE(memory.heapAfterCollection());
}

TEST_F(MemoryMeterTest, PicturesThatThrowEachOtherOutAreTold) {
  const std::string header("\0\0\2\0\1\220\0\1\0\14\0\0", 12);  // 512 x 400
  for (const char* name : {"one.kpx", "two.kpx", "six.kpx"}) write(name, header + std::string(512 * 400, '\1'));
  open(kPlain);
  const auto show = [&](const std::string& name) { type("widgets.p.src = \"" + name + ".kpx\";"); };
  show("one");
  show("two");
  EXPECT_TRUE(memory.thrownOut().empty());
  EXPECT_EQ(memory.images().entries.size(), 2u);
  EXPECT_EQ(warned(MemoryKind::images), "");
  show("six");
  ASSERT_EQ(memory.thrownOut().size(), 1u);
  EXPECT_EQ(memory.thrownOut().front().name, "one.kpx");
  EXPECT_EQ(warned(MemoryKind::images), "") << "once is no harm";
  for (int i = 0; i < 3; ++i)
    for (const char* name : {"one", "two", "six"}) show(name);
  EXPECT_TRUE(
      warned(MemoryKind::images).starts_with("one.kpx was thrown out of the image memory and read again 3 times"))
      << warned(MemoryKind::images);
}

TEST_F(MemoryMeterTest, TheHistoryStaysShortAndKeepsItsPeaks) {
  memory = MemoryMeter(60);
  open(kPlain);
  session->pass(1000);
  type("define waste() { local i; for (i = 0; i < 600; ++i) new Vector(20); }");
  type("waste();");
  const auto peakOf = [this] {
    uint32_t most = 0;
    for (const MemorySample& sample : memory.history()) most = std::max(most, sample.heapBytes);
    return most;
  };
  const uint32_t peak = peakOf();
  EXPECT_GE(peak, memory.latest().heapBytes);
  session->pass(20000);
  const auto& history = memory.history();
  EXPECT_LE(history.size(), 60u);
  EXPECT_GE(peakOf(), peak);
  EXPECT_GT(history.size(), 30u);
  EXPECT_EQ(history.back().time, 21000u);
  EXPECT_TRUE(std::is_sorted(history.begin(), history.end(),
                             [](const MemorySample& a, const MemorySample& b) { return a.time < b.time; }));
  EXPECT_EQ(history.back().widgets, 2u);
}

}  // namespace
