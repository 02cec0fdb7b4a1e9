#include <gtest/gtest.h>

#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "bob/heap/roots.h"
#include "bob/model/vectors.h"
#include "bob/session.h"

namespace {

using namespace BobLayout;

uint32_t FreeBytes(BobInterp* interp) { return interp->newSpace.top - interp->newSpace.free; }

TEST(Heap, ObjectsTakeTheSizesOf32BitWords) {
  Session session;
  BobInterp* interp = session.interp;
  const auto taken = [&](auto make) {
    const uint32_t before = interp->newSpace.free;
    make();
    return interp->newSpace.free - before;
  };
  EXPECT_EQ(taken([&] { bobMakeInteger(interp, kBobSmallMax); }), 0u);
  EXPECT_EQ(taken([&] { bobMakeInteger(interp, kBobSmallMax + 1); }), 8u);
  EXPECT_EQ(taken([&] { bobMakeFloat(interp, 1.5); }), 16u);
  EXPECT_EQ(taken([&] { bobMakeString(interp, ""); }), 12u);
  EXPECT_EQ(taken([&] { bobMakeString(interp, "abc"); }), 12u);
  EXPECT_EQ(taken([&] { bobMakeString(interp, "abcd"); }), 16u);
  EXPECT_EQ(taken([&] { bobMakeVector(interp, 5); }), 32u);
  EXPECT_EQ(taken([&] { bobMakeCode(interp, 3); }), 20u);
  EXPECT_EQ(taken([&] { bobMakeObject(interp, kBobNil); }), 16u);
  EXPECT_EQ(taken([&] { bobMakeNative(interp, interp->fileKind); }), 24u);
  const uint32_t odd = bobMakeKind(interp, 0, "Odd", nullptr, nullptr, 5);  // extra bytes take whole words
  EXPECT_EQ(taken([&] { bobMakeNative(interp, odd); }), 28u);
  const BobLocal object(interp, bobMakeObject(interp, kBobNil));
  const uint32_t sizes[] = {16, 16, 16, 16, 16 + 24, 16, 16, 16, 16 + 40};  // properties; tables of 4 and 8 buckets
  for (int i = 0; i < 9; ++i)
    EXPECT_EQ(taken([&] { bobSetProperty(interp, object, bobSmall(i), kBobNil); }), sizes[i]) << i;
}

// What so many properties take: a property each, and a table when there are more than four.
uint32_t StoreSize(size_t count) {
  size_t buckets = 4;
  for (size_t held = 5; held < count; ++held)
    if (held >= 2 * buckets) buckets *= 2;
  return uint32_t(16 * count + (count > 4 ? 8 + 4 * buckets : 0));
}

std::set<std::string> Names(const std::string& text) {
  std::istringstream in(text);
  return {std::istream_iterator<std::string>(in), {}};
}

// Pages have the rest of the space to themselves, so a new interpreter must hold these objects and no others.
TEST(Heap, ANewInterpreterHoldsItsClassesAndNothingElse) {
  const std::set<std::string> object = Names("initialize Class Clone Exists ExistsLocally Send Show");
  const std::set<std::string> kinds[] = {
      Names("Decode Apply"),
      Names("initialize Clone Push PushFront Pop PopFront size"),  // Vector
      Names("printName"),
      Names("initialize Intern toInteger toFloat size"),  // String
      Names("toFloat toInteger toString"),
      Names("toFloat toInteger"),
      Names("initialize Close Print Display GetC PutC"),
  };
  constexpr uint32_t kKindsWithoutMembers = 8;  // Type, CObject, CMethod, Property, CompiledCode, three environments
  const std::set<std::string> globals = Names(
      "nil true false Object Type Method Vector Symbol String Integer Float CObject CMethod Property CompiledCode "
      "Environment StackEnvironment MovedEnvironment File stdin stdout stderr Hash toString rand gc LoadObjectFile "
      "Quit "
      "Load Eval CompileFile");
  std::set<std::string> symbols = globals;
  symbols.insert(object.begin(), object.end());
  uint32_t expected = 16 + StoreSize(object.size()) + 16 + StoreSize(globals.size()) + 24 * kKindsWithoutMembers;
  for (const auto& members : kinds) {
    symbols.insert(members.begin(), members.end());
    expected += 24 + StoreSize(members.size());
  }
  expected += 16 + StoreSize(symbols.size());
  expected += 3 * 24;        // stdin, stdout, stderr
  expected += 12 + 4 * 256;  // the compiler's literals
  Session session;
  bobCollect(session.interp);
  EXPECT_EQ(session.interp->newSpace.free - session.interp->newSpace.base, expected);
}

TEST(Heap, VectorsGrowByHalfWithinBounds) {
  Session session;
  BobInterp* interp = session.interp;
  const BobLocal vector(interp, bobMakeVector(interp, 0));
  const struct {
    uint32_t size, taken;  // the bytes of the vector that takes over, 0 if it has space
  } steps[] = {
      {1, 12 + 4 * 8},     {8, 0},  {9, 12 + 4 * 16},  {16, 0},
      {17, 12 + 4 * 24},   {24, 0}, {25, 12 + 4 * 36}, {300, 12 + 4 * 300},
      {301, 12 + 4 * 428}, {2, 0},  {428, 0},          {1000, 12 + 4 * 1000},
  };
  for (const auto& step : steps) {
    const uint32_t before = interp->newSpace.free;
    bobSetVectorSize(interp, vector, step.size);
    EXPECT_EQ(interp->newSpace.free - before, step.taken) << step.size;
    EXPECT_EQ(bobVectorSize(interp, vector), step.size);
  }
}

TEST(Heap, HoldsExactlyItsSpaceAndRaisesBeyondIt) {
  Session session;
  BobInterp* interp = session.interp;
  bobCollect(interp);
  session.answer();
  EXPECT_EQ(interp->newSpace.top - interp->newSpace.base, 102400u);
  EXPECT_TRUE(bobTry(interp, [&] {
    const BobLocal all(interp, bobMakeVector(interp, FreeBytes(interp) / 4 - 3));
    EXPECT_EQ(FreeBytes(interp), 0u);
  }));
  EXPECT_EQ(session.err.text, "");  // the last byte was handed out without a collection
  EXPECT_TRUE(bobTry(interp, [&] {  // a collection that frees just enough is enough
    bobCollect(interp);
    const uint32_t free = FreeBytes(interp);
    bobMakeInteger(interp, kBobSmallMin - 1);
    const BobLocal all(interp, bobMakeVector(interp, free / 4 - 3));
    EXPECT_EQ(FreeBytes(interp), 0u);
  }));
  session.answer();
  EXPECT_FALSE(bobTry(interp, [&] {
    bobCollect(interp);
    const BobLocal all(interp, bobMakeVector(interp, FreeBytes(interp) / 4 - 3));
    bobMakeInteger(interp, kBobSmallMin - 1);
  }));
  EXPECT_EQ(session.answer(), "Error: Insufficient memory\n");
  EXPECT_EQ(session.eval("\"still\" + \" here\";"), "--> \"still here\"\n");
  for (const char* text :
       {"new Vector(0x40000000);", "new String(0x7FFFFFFF);", "(\\[])[0x7FFFFFFE] = 1;", "(\\[]).size = 30000;"})
    EXPECT_TRUE(session.eval(text).starts_with("Error: Insufficient memory\n")) << text;
  // What is too large for any space is looked for all the same: a collection comes first.
  bobConsoleEvaluate(session.root(), "new Vector(0x40000000);");
  EXPECT_TRUE(session.err.text.starts_with("[GC - ")) << session.err.text;
}

TEST(Heap, ReportsEveryCollection) {
  Session session;
  bobCollect(session.interp);
  const std::regex report("\\[GC - [0-9]+ bytes free, total memory [0-9]+, allocations [0-9]+\\]\n");
  EXPECT_TRUE(std::regex_match(session.err.text, report)) << session.err.text;
  EXPECT_NE(session.err.text.find(" " + std::to_string(FreeBytes(session.interp)) + " bytes free"), std::string::npos);
  // Two spaces, the stack, a chunk of symbols and the kinds Type and File; the compiler, its code and the block of
  // protected pointers that its literals are in. Each has a word more, for its size.
  EXPECT_EQ(session.interp->totalMemory, 2u * (102400 + 20 + 4) + (262144 + 4) + (8192 + 8 + 4) + 2 * (15 * 4 + 5 + 4) +
                                             (1200 + 4) + (4096 + 4) + (408 + 4));
  EXPECT_EQ(session.interp->allocationCount, 9u);
  // A protected-pointer block: its link, 100 addresses and a count, and the word that keeps the size.
  const uint32_t memory = session.interp->totalMemory;
  std::vector<BobValue> variables(100);
  for (BobValue& variable : variables) bobProtect(session.interp, &variable);
  EXPECT_EQ(session.interp->totalMemory, memory + 412);
  for (BobValue& variable : variables) EXPECT_TRUE(bobUnprotect(session.interp, &variable));
  EXPECT_FALSE(bobUnprotect(session.interp, &variables[0]));
}

TEST(Heap, ProtectedVariablesFollowTheirObjects) {
  Session session;
  BobInterp* interp = session.interp;
  BobValue a, b;
  bobProtect(interp, &a);
  bobProtect(interp, &b);
  a = bobMakeVector(interp, 1);
  b = a;
  const BobValue before = a;
  bobCollect(interp);
  EXPECT_NE(a, before);
  EXPECT_EQ(a, b);
  EXPECT_EQ(bobVectorSize(interp, a), 1u);
  bobUnprotect(interp, &a);
  bobUnprotect(interp, &b);

  std::vector<BobValue> many(250);  // a block holds 100 of them
  std::vector<size_t> newBlocks;
  for (size_t i = 0; i < many.size(); ++i) {
    const uint32_t total = interp->totalMemory;
    bobProtect(interp, &many[i]);
    if (interp->totalMemory != total) newBlocks.push_back(i);
  }
  ASSERT_GE(newBlocks.size(), 2u);
  EXPECT_EQ(newBlocks[1] - newBlocks[0], 100u);
  for (BobValue& variable : many) bobUnprotect(interp, &variable);
}

TEST(Symbols, AreOneForEachTextAndStay) {
  Session session;
  BobInterp* interp = session.interp;
  // Worked out by hand: 0xFFFF; 'a' 0x61 takes table[0x9E] = 0x6277, XOR 0x00FF.
  EXPECT_EQ(bobHashBytes(""), 0xFFFFu);
  EXPECT_EQ(bobHashBytes("a"), 0x6277u ^ 0x00FFu);
  const BobValue symbol = bobIntern(interp, "some name");
  bobCollect(interp);
  EXPECT_EQ(bobIntern(interp, "some name"), symbol);
  EXPECT_NE(bobIntern(interp, std::string_view("some\0name", 9)), symbol);
  EXPECT_EQ(kBobNil, bobIntern(interp, "nil"));
  EXPECT_EQ(kBobTrue, bobIntern(interp, "true"));
  // Far more symbols than a chunk holds; one that no chunk can hold.
  for (int i = 0; i < 2000; ++i) bobIntern(interp, "symbol " + std::to_string(i));
  for (int i = 0; i < 2000; i += 37) {
    const std::string text = "symbol " + std::to_string(i);
    EXPECT_EQ(interp->symbolOf(bobIntern(interp, text)), text);
  }
  EXPECT_TRUE(session.eval("(new String(9000)).Intern();").starts_with("Error: Insufficient memory\n"));
}

TEST(Handles, GoStaleForEveryHolderAtOnce) {
  Session session;
  BobInterp* interp = session.interp;
  int widget = 0, other = 0;
  const uint32_t handle = bobMakeHandle(interp, &widget);
  EXPECT_EQ(bobHandlePointer(interp, handle), &widget);
  bobReleaseHandle(interp, handle);
  const uint32_t next = bobMakeHandle(interp, &other);
  EXPECT_EQ(bobHandlePointer(interp, next), &other);
  EXPECT_EQ(bobHandlePointer(interp, handle), nullptr);
  bobReleaseHandle(interp, handle);  // does nothing to its successor
  EXPECT_EQ(bobHandlePointer(interp, next), &other);
  EXPECT_EQ(bobHandlePointer(interp, 0), nullptr);
  EXPECT_EQ(bobHandlePointer(interp, 0xFFFFFFFF), nullptr);
}

}  // namespace
