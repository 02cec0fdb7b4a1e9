// Streams, descriptors, strings and the folder iterator.
#include "gfx/foundation/hsstream.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "gfx/foundation/hsdescriptor.h"
#include "gfx/foundation/hsfilestream.h"
#include "gfx/foundation/hsfolderiterator.h"
#include "gfx/foundation/hsstrings.h"
#include "gfx/halt.h"
#include "support/temporaryfolder.h"

namespace {

void WriteAll(hsOutputStream& out) {
  out.WriteBool(true);
  out.WriteShort(0x1234);
  out.WriteLong(0x89ABCDEF);
  out.WriteFixed(-1);
  out.WritePoint({kFixed1, -2});
  out.WritePString("name");
  out.WritePString("");
  const uint16_t shorts[] = {1, 0xFFFF};
  out.WriteShorts(2, shorts);
}

void ReadAll(hsInputStream& in) {
  char name[256];
  hsPoint point;
  uint16_t shorts[2];
  EXPECT_EQ(in.ReadByte(), 1);
  EXPECT_EQ(in.ReadShort(), 0x1234);
  EXPECT_EQ(in.ReadLong(), 0x89ABCDEFu);
  EXPECT_EQ(in.ReadFixed(), -1);
  in.ReadPoint(&point);
  EXPECT_EQ(point, (hsPoint{kFixed1, -2}));
  EXPECT_EQ(in.ReadPString(name), 4);
  EXPECT_STREQ(name, "name");
  EXPECT_EQ(in.ReadPString(name), 0);
  EXPECT_STREQ(name, "");
  in.ReadShorts(2, shorts);
  EXPECT_EQ(shorts[1], 0xFFFF);
  EXPECT_EQ(in.GetPosition(), 29);
  EXPECT_TRUE(in.AtEnd());
}

TEST(Stream, WhatIsWrittenIsRead) {
  hsMemoryStream memory;
  WriteAll(memory);
  uint8_t bytes[29];
  memory.CopyToMem(bytes);
  EXPECT_EQ(bytes[1], 0x34);  // little-endian
  memory.Rewind();
  ReadAll(memory);

  TemporaryFolder folder;
  hsFileStream file;
  ASSERT_TRUE(file.Open((folder.path() / "f").string().c_str(), "wb"));
  WriteAll(file);
  file.Close();
  file.Close();
  ASSERT_TRUE(file.Open((folder.path() / "f").string().c_str()));
  EXPECT_EQ(file.GetEOF(), 29);
  ReadAll(file);
  file.Seek(1);
  file.Skip(2);
  EXPECT_EQ(file.ReadLong(), 0x89ABCDEFu);
  EXPECT_FALSE(file.Open((folder.path() / "none").string().c_str()));
}

TEST(Stream, AShortReadIsReportedAndTakesNothing) {
  hsMemoryStream three("abc", 3);
  EXPECT_EQ(ReportOf([&] { three.ReadLong(); }), "throw if false: 0");
  EXPECT_EQ(three.GetPosition(), 0);
}

struct Deleter {
  void operator()(hsDescriptor* desc) const { hsDescriptor::Delete(desc); }
};
using OwnedDescriptor = std::unique_ptr<hsDescriptor, Deleter>;

OwnedDescriptor Blank() {
  OwnedDescriptor desc(hsDescriptor::New(64));
  std::memset(desc.get() + 1, 0xEE, 64 - sizeof(hsDescriptor));
  return desc;
}

TEST(Descriptor, PadsWithZerosSoThatEqualContentsAreEqualBlocks) {
  const OwnedDescriptor a = Blank(), b = Blank();
  std::memset(b.get() + 1, 0x11, 40);
  for (hsDescriptor* d : {a.get(), b.get()}) {
    *static_cast<char*>(hsDescriptor::Add(d, hsTag("One "), 1)) = 'x';
    std::memcpy(hsDescriptor::Add(d, hsTag("Two "), 4), "abcd", 4);
    for (int time = 0; time < 2; ++time) hsDescriptor::ComputeCheckSum(d);  // the old sum doesn't count
  }
  const int32_t lengths[] = {1, 4};
  EXPECT_EQ(int32_t(a->fLength), hsDescriptor::ComputeSize(2, lengths));
  EXPECT_EQ(a->fLength, 36u);
  EXPECT_TRUE(hsDescriptor::Equal(a.get(), b.get()));
  // The words: 36, 2, tag, 1, "x" with zeros, tag, 4, "abcd".
  uint32_t x, abcd;
  std::memcpy(&x, "x\0\0", 4);
  std::memcpy(&abcd, "abcd", 4);
  EXPECT_EQ(a->fCheckSum, 36u + 2 + hsTag("One ") + 1 + x + hsTag("Two ") + 4 + abcd);

  const OwnedDescriptor c = Blank();  // the same entries the other way round
  std::memcpy(hsDescriptor::Add(c.get(), hsTag("Two "), 4), "abcd", 4);
  *static_cast<char*>(hsDescriptor::Add(c.get(), hsTag("One "), 1)) = 'x';
  hsDescriptor::ComputeCheckSum(c.get());
  EXPECT_EQ(c->fCheckSum, a->fCheckSum);
  EXPECT_FALSE(hsDescriptor::Equal(a.get(), c.get()));

  const OwnedDescriptor copy(hsDescriptor::Copy(a.get(), nullptr));
  EXPECT_TRUE(hsDescriptor::Equal(a.get(), copy.get()));
  for (const auto& [tag, length] : {std::pair{hsTag("None"), 36u}, {hsTag("Two "), 24u}, {hsTag("One "), 12u}}) {
    hsDescriptor::Remove(copy.get(), tag);
    EXPECT_EQ(copy->fLength, length);
  }
}

TEST(Descriptor, FindsByTagAndChecksSizes) {
  const OwnedDescriptor d = Blank();
  std::memcpy(hsDescriptor::Add(d.get(), hsTag("shrt"), 2), "\1\2", 2);
  const uint32_t word = 0xFFFF8000;
  std::memcpy(hsDescriptor::Add(d.get(), hsTag("long"), 4), &word, 4);
  int32_t length = 0;
  char buffer[2] = {};
  EXPECT_NE(hsDescriptor::Find(d.get(), hsTag("shrt"), &length, buffer), nullptr);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(buffer[1], 2);
  EXPECT_EQ(hsDescriptor::Find(d.get(), hsTag("none")), nullptr);
  EXPECT_EQ(hsDescriptor::Find32(d.get(), hsTag("long")), word);
  EXPECT_EQ(hsDescriptor::FindScalar(d.get(), hsTag("long")), -0x8000);
  EXPECT_EQ(AssertOf([&] { hsDescriptor::Find32(d.get(), hsTag("shrt")); }), "bad Find32");
  EXPECT_EQ(AssertOf([&] { hsDescriptor::FindScalar(d.get(), hsTag("none")); }), "bad FindScalar");
  EXPECT_EQ(AssertOf([] { hsDescriptor::New(13); }), "bad size");
  EXPECT_EQ(AssertOf([] { hsDescriptor::Find32(nullptr, 0); }), "hsDescriptor is nil");
}

TEST(Descriptor, ABrokenBlockIsNotWalkedOutside) {
  const OwnedDescriptor d = Blank();
  hsDescriptor::Add(d.get(), hsTag("data"), 8);
  for (uint32_t length : {5u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    std::memcpy(reinterpret_cast<char*>(d.get()) + 16, &length, 4);
    EXPECT_EQ(AssertOf([&] { hsDescriptor::Find(d.get(), hsTag("none")); }), length == 5 ? "" : "bad length");
  }
  d->fCount = 64;
  EXPECT_EQ(AssertOf([&] { hsDescriptor::ComputeCheckSum(d.get()); }), "bad count");
  hsDescriptor::Init(d.get());
}

TEST(Strings, FixedNumbersInDecimal) {
  const std::pair<hsFixed, const char*> cases[] = {
      {0x18000, "1.5"},    {-0x8000, "-0.5"},           {0x10000, "1"},   {0, "0"}, {0x10001, "1."},
      {0x1FFFF, "1.9999"}, {-0x7FFFFFFF - 1, "-32768"}, {0x28F, "0.0099"}};
  for (const auto& [value, want] : cases) {
    char buffer[kFixedStringSize];
    EXPECT_EQ(hsFixedToString(value, buffer), buffer + std::strlen(want) + 1);
    EXPECT_STREQ(buffer, want);
  }
}

TEST(Strings, SubstringsAreFoundWithoutBackingUp) {
  const char* text = "xxaxab";
  EXPECT_EQ(hsFindSubstring(text, "ab"), text + 4);
  EXPECT_EQ(hsFindSubstring(text, "xa"), text + 1);
  EXPECT_EQ(hsFindSubstring(text, ""), text);
  EXPECT_EQ(hsFindSubstring(text, "abc"), nullptr);
  EXPECT_EQ(hsFindSubstring("aaab", "aab"), nullptr);
  EXPECT_EQ(AssertOf([&] { hsFindSubstring(text, nullptr); }), "nil strs");
}

TEST(FolderIterator, WalksAFolderInOrder) {
  TemporaryFolder folder;
  for (const char* name : {"b.ttf", "a.ttf", "c.TTF", "d.ttf.bak", "ttf"}) std::ofstream(folder.path() / name) << "x";
  hsFolderIterator it(folder.path().string().c_str());
  EXPECT_THROW(it.GetFileName(), const char*);
  std::string names;
  while (it.NextFileSuffix("ttf")) names += it.GetFileName() + std::string(" ");
  EXPECT_EQ(names, "a.ttf b.ttf ");
  EXPECT_THROW(it.GetFileName(), const char*);
  it.Reset();
  EXPECT_TRUE(it.NextFile());
  char buffer[kFolderIterator_MaxPath];
  EXPECT_EQ(it.GetPathAndName(buffer), int(folder.path().string().size()) + 7);
  EXPECT_EQ(buffer, folder.path().string() + "/a.ttf");
  hsFolderIterator none((folder.path() / "none").string().c_str());
  EXPECT_FALSE(none.NextFile());
}

TEST(FolderIterator, APathTooLongIsReported) {
  TemporaryFolder folder;
  const std::string inner(240 - folder.path().string().size(), 'd');  // with the '/' a path of 241 characters
  std::filesystem::create_directory(folder.path() / inner);
  for (const char* name : {"12345678901234567", "123456789012345678"})
    std::ofstream(folder.path() / inner / name) << "x";
  hsFolderIterator it((folder.path() / inner).string().c_str());
  ASSERT_TRUE(it.NextFile());
  EXPECT_EQ(it.GetPathAndName(nullptr), 260);
  ASSERT_TRUE(it.NextFile());
  EXPECT_EQ(AssertOf([&] { it.GetPathAndName(nullptr); }), "Overrun kFolderIterator_MaxPath");
}

}  // namespace
