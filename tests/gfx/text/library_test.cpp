#include <functional>
#include <thread>

#include "gfx/foundation/hsglibrary.h"
#include "gfx/pixel/hsgcreateproc.h"
#include "gfx/text/textfixture.h"

namespace {

class LibraryTest : public TextTest {
 protected:
  // Draws with a paint of its own: a paint keeps the fonts of the library that it first measured with.
  void DrawOnce() {
    hsGAttribute attr;
    attr.SetTextSize(10 * kFixed1);
    fDraw.fAttr = &attr;
    Draw("a", 5_px, 20_px);
    fDraw.fAttr = &fAttr;
  }
  std::string PrintedBy(const std::function<void()>& work) {
    testing::internal::CaptureStdout();
    work();
    return testing::internal::GetCapturedStdout();
  }
};

hsGSizedFlattenable* RebuildNothing(const void**, int32_t) { return nullptr; }
hsGSizedFlattenable* RebuildNone(const void**, int32_t) { return nullptr; }

TEST_F(LibraryTest, EachHasItsOwnFontsStrikesAndNumbers) {
  const std::vector<uint8_t> font = BlockFont().Build();
  hsGRegisterCreateProc(RebuildNothing);
  DrawOnce();
  const uint32_t bytes = hsGGlyphCache::ImageBytes();
  hsGLibrary& before = hsGLibrary::Current();
  {
    hsGLibrary other;
    const hsGLibraryScope scope(other);
    EXPECT_EQ(&hsGLibrary::Current(), &other);
    EXPECT_EQ(hsGFontRegistry::FontCount(), 0u);
    EXPECT_EQ(hsGRegisterCreateProc(RebuildNone), 1u);
    EXPECT_EQ(hsGFontRegistry::RegisterMemory(uint32_t(font.size()), font.data(), false, 0), 1u);
    EXPECT_EQ(hsGGlyphCache::ImageBytes(), 0u);
    DrawOnce();
    EXPECT_EQ(hsGGlyphCache::Instance()->Count(), 1);
  }
  EXPECT_EQ(&hsGLibrary::Current(), &before);
  EXPECT_EQ(hsGGlyphCache::ImageBytes(), bytes);
  EXPECT_EQ(hsGGlyphCache::Instance()->Count(), 1);
  EXPECT_NE(hsGFindCreateProc(1), RebuildNone);
}

// Its strikes find their font engines in it, whatever library is current then.
TEST_F(LibraryTest, GoesWithItsGlyphCacheWhileAnotherIsCurrent) {
  const std::vector<uint8_t> font = BlockFont().Build();
  auto used = std::make_unique<hsGLibrary>();
  {
    const hsGLibraryScope scope(*used);
    hsGFontRegistry::RegisterMemory(uint32_t(font.size()), font.data(), false, 0);
    DrawOnce();
  }
  DrawOnce();
  EXPECT_EQ(PrintedBy([&] { used.reset(); }), "deleting glyph cache\n");
  EXPECT_EQ(hsGGlyphCache::Instance()->Count(), 1);
  auto unused = std::make_unique<hsGLibrary>();
  EXPECT_EQ(PrintedBy([&] { unused.reset(); }), "");
}

TEST_F(LibraryTest, AThreadThatSetsNoneHasItsOwn) {
  hsGLibrary* here = &hsGLibrary::Current();
  const std::string printed = PrintedBy([&] {
    std::thread([&] {
      EXPECT_NE(&hsGLibrary::Current(), here);
      EXPECT_EQ(hsGFontRegistry::FontCount(), 0u);
      hsGGlyphCache::Instance();
    }).join();
  });
  EXPECT_EQ(printed, "");
  EXPECT_EQ(hsGFontRegistry::FontCount(), 1u);
}

}  // namespace
