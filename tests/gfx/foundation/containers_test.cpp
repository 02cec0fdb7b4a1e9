// The array, the appender, the chunk allocator, the set of names and raw blocks.
#include <gtest/gtest.h>

#include <deque>
#include <new>
#include <numeric>
#include <random>
#include <vector>

#include "gfx/foundation/hsappender.h"
#include "gfx/foundation/hschunkallocator.h"
#include "gfx/foundation/hsmemory.h"
#include "gfx/foundation/hsstringstorage.h"
#include "gfx/foundation/hstarray.h"
#include "gfx/halt.h"
#include "gfx/nomemory.h"

namespace {

std::vector<int> Elements(const hsTArray<int>& array) { return {array.begin(), array.end()}; }

TEST(TArray, GrowsToTwiceTheSpaceAndSetCountLosesWhatItHeld) {
  hsTArray<int> a;
  int* first = a.Append(3);
  std::iota(first, first + 3, 10);
  for (int value : {4, 5, 6}) a.Push(value);
  EXPECT_EQ(first, a.Array());  // six fit without a move
  a.Push(a[0]);                 // the pushed value lies in the block that is given up
  EXPECT_EQ(Elements(a), (std::vector{10, 11, 12, 4, 5, 6, 10}));
  a.SetCapacity(100);
  EXPECT_EQ(a.Count(), 7);
  const int* block = a.Array();
  a.SetCount(50);
  EXPECT_EQ(a.Array(), block);
  EXPECT_EQ(a[6], 10);
  a.SetCount(101);
  EXPECT_EQ(a.Count(), 101);
  a.SetCount(0);
  EXPECT_EQ(a.Array(), nullptr);

  hsTArray<int> b;
  b.Push(7);
  a = b;
  b[0] = 8;
  a = *&a;
  EXPECT_EQ(Elements(a), (std::vector{7}));
}

TEST(TArray, BadIndicesAndCountsAreReported) {
  hsTArray<int> a;
  a.Push(1);
  EXPECT_EQ(AssertOf([&] { a[1] = 5; }), "bad index");
  EXPECT_EQ(AssertOf([&] { a.Get(-1); }), "bad index");
  EXPECT_EQ(AssertOf([&] { a.Append(0); }), "bad AppendCount");
  EXPECT_EQ(AssertOf([&] { a.SetCount(-1); }), "bad count");
  ReturnOnHalt halt;
  a[1] = 5;
  a.SetCount(-1);
  EXPECT_EQ(a.Append(-1), nullptr);
  EXPECT_EQ(a.Get(99), 0);
  EXPECT_EQ(Elements(a), (std::vector{1}));
}

TEST(Appender, AgreesWithADequeWhateverIsDone) {
  ThrowOnHalt halt;
  std::mt19937 random(5);
  hsAppender a(sizeof(int), 3);
  std::deque<int> d;
  for (int i = 0; i < 5000; ++i) {
    std::vector<int> many(random() % 8);
    for (int& value : many) value = int(random());
    int popped = 0;
    switch (random() % 8) {
      case 0: a.Append(&i), d.push_back(i); break;
      case 1: a.Prepend(&i), d.push_front(i); break;
      case 2: a.Append(int(many.size()), many.data()), d.insert(d.end(), many.begin(), many.end()); break;
      case 3:
      case 4:
        ASSERT_EQ(a.PopHead(&popped), !d.empty());
        if (d.empty()) break;
        ASSERT_EQ(popped, d.front());
        d.pop_front();
        break;
      case 5:
        ASSERT_EQ(a.PopTail(&popped), !d.empty());
        if (d.empty()) break;
        ASSERT_EQ(popped, d.back());
        d.pop_back();
        break;
      case 6: {
        const size_t count = std::min(many.size(), d.size());
        ASSERT_EQ(a.PopHead(int(many.size()), many.data()), int(count));
        ASSERT_TRUE(std::equal(many.begin(), many.begin() + ptrdiff_t(count), d.begin()));
        d.erase(d.begin(), d.begin() + ptrdiff_t(count));
        break;
      }
      default: {
        std::vector<int> copy(d.size()), walked, back, read(d.size());
        ASSERT_EQ(a.CopyTo(copy.data()), int(4 * d.size()));
        hsAppenderIterator forward(&a), all(&a);
        while (void* p = forward.Next()) walked.push_back(*static_cast<int*>(p));
        ASSERT_EQ(all.Next(int(d.size()) + 5, read.data()), int(d.size()));
        hsAppenderReverseIterator backward(&a);
        for (int value; backward.Next(&value);) back.push_back(value);
        const std::vector<int> want(d.begin(), d.end());
        ASSERT_EQ(copy, want);
        ASSERT_EQ(walked, want);
        ASSERT_EQ(read, want);
        ASSERT_EQ(back, std::vector<int>(d.rbegin(), d.rend()));
      }
    }
    ASSERT_EQ(a.Count(), int(d.size()));
    ASSERT_EQ(a.PeekHead() == nullptr, d.empty());
  }
}

TEST(Appender, ElementsNeverMoveAndBlocksGoWhenEmpty) {
  hsAppender a(sizeof(int), 2);
  const int one = 1;
  const void* first = a.Append(&one);
  for (int i = 0; i < 9; ++i) a.Append(&i), a.Prepend(&i);
  EXPECT_EQ(*static_cast<const int*>(first), 1);
  a.PopTail(nullptr);
  a.PopHead(18, nullptr);
  EXPECT_EQ(a.PeekHead(), nullptr);
  EXPECT_EQ(a.CopyTo(nullptr), 0);
  hsAppenderIterator it(&a);
  int32_t count = -1;
  EXPECT_EQ(it.NextBlock(&count), nullptr);
  EXPECT_EQ(count, 0);
}

TEST(Appender, ABlockWithoutSpaceIsReported) {
  EXPECT_EQ(AssertOf([] { hsAppender(4, 0).Append(1, nullptr); }), "bad appendsize");
}

TEST(ChunkAllocator, PiecesFollowEachOtherUntilAChunkIsAbandoned) {
  hsChunkAllocator a(64);
  char* first = static_cast<char*>(a.Allocate(30, "a piece of the first chunk...."));
  EXPECT_EQ(a.Allocate(34), first + 30);
  char* big = static_cast<char*>(a.Allocate(100));  // and 100 is the chunk size from here on
  EXPECT_NE(big, first + 64);
  char* next = static_cast<char*>(a.Allocate(60));
  EXPECT_EQ(a.Allocate(40), next + 60);
  EXPECT_EQ(std::string(first, 30), "a piece of the first chunk....");
}

TEST(StringStorage, NumbersNamesAndRefusesASecondOfAKind) {
  hsStringStorage names;
  std::string name = "first";
  names.Add(name.c_str());
  name = "other";
  names.Add(name.c_str());
  int32_t index = -1;
  EXPECT_TRUE(names.Find("other", &index));
  EXPECT_EQ(index, 1);
  EXPECT_FALSE(names.Find("firs"));
  EXPECT_EQ(AssertOf([&] { names.Add("first"); }), "name already in string storage");
  ReturnOnHalt halt;
  names.Add("first");
  EXPECT_EQ(names.Count(), 2);
}

TEST(Memory, CopyRefusesOverlapAndMoveDoesIt) {
  char bytes[] = "abcdefgh";
  EXPECT_EQ(ReportOf([&] { hsMemory::BlockCopy(bytes + 1, bytes, 4); }), "throw if false: 0");
  EXPECT_EQ(ReportOf([&] { hsMemory::BlockCopy(bytes, bytes + 3, 4); }), "throw if false: 0");
  EXPECT_EQ(ReportOf([&] { hsMemory::BlockCopy(bytes, nullptr, 0); }), "nil param: 0");
  EXPECT_EQ(ReportOf([&] { hsMemory::Clear(bytes, -1); }), "throw if false: 0");
  EXPECT_STREQ(bytes, "abcdefgh");
  hsMemory::BlockCopy(bytes, bytes, 0);  // nothing doesn't overlap
  hsMemory::BlockMove(bytes + 1, bytes, 4);
  EXPECT_STREQ(bytes, "aabcdfgh");
  hsMemory::BlockCopy(bytes + 4, bytes, 4);
  EXPECT_STREQ(bytes, "aabcaabc");
  EXPECT_TRUE(hsMemory::EqualBlocks(bytes, bytes + 4, 4));
  EXPECT_FALSE(hsMemory::EqualBlocks(bytes, bytes + 1, 4));
}

TEST(Memory, OnlyTheSoftFormsSurviveWithoutMemory) {
  hsChunkAllocator chunks(16);
  void* soft;
  void* piece;
  bool threw = false;
  {
    NoMemory none;
    soft = hsMemory::SoftNew(100);
    piece = chunks.SoftAllocate(8);
    try {
      hsMemory::New(100);
    } catch (const std::bad_alloc&) {
      threw = true;
    }
  }
  EXPECT_EQ(soft, nullptr);
  EXPECT_EQ(piece, nullptr);
  EXPECT_TRUE(threw);
  EXPECT_EQ(AssertOf([] { hsMemory::New(-1); }), "bad size");
  EXPECT_EQ(ReportOf([] { hsMemory::SoftNew(-1); }), "throw if false: 0");
  EXPECT_NE(chunks.SoftAllocate(8), nullptr);
}

}  // namespace
