#include "t2k/tsimem.h"

#include <gtest/gtest.h>

#include <vector>

#include "t2k/t2kstrm.h"

namespace {

template <class Work>
int CodeOf(Work work) {
  try {
    work();
  } catch (const tsiError& error) {
    return error.code;
  }
  return 0;
}

class MemoryHandler : public testing::Test {
 protected:
  tsiMemObject* mem = tsi_NewMemhandler(nullptr);
  ~MemoryHandler() override { tsi_DeleteMemhandler(mem); }
};

TEST_F(MemoryHandler, TakesTwoHundredAndFiftySixBlocksAndNoMore) {
  std::vector<void*> blocks;
  for (int i = 0; i < 256; ++i) blocks.push_back(tsi_AllocMem(mem, uint32_t(i)));
  EXPECT_EQ(CodeOf([&] { tsi_AllocMem(mem, 1); }), 10012);
  tsi_DeAllocMem(mem, blocks[100]);
  EXPECT_EQ(mem->numPointers, 255);
  EXPECT_NE(tsi_AllocMem(mem, 1), nullptr);
}

TEST_F(MemoryHandler, FindsHeadsAndTailsThatWereWrittenOver) {
  auto* block = static_cast<uint8_t*>(tsi_AllocMem(mem, 5));
  EXPECT_EQ(block[5], 0x5A);
  EXPECT_EQ(block[6], 0xF0);
  block[6] = 0;
  EXPECT_EQ(CodeOf([&] { tsi_DeAllocMem(mem, block); }), 10009);
  EXPECT_EQ(CodeOf([&] { tsi_ReAllocMem(mem, block, 9); }), 10009);
  block[6] = 0xF0;
  block[-8] ^= 1;
  EXPECT_EQ(CodeOf([&] { tsi_DeAllocMem(mem, block); }), 10009);
  block[-8] ^= 1;
  tsi_DeAllocMem(mem, block);
  EXPECT_EQ(mem->numPointers, 0);
}

TEST_F(MemoryHandler, KnowsItsOwnBlocksOnly) {
  tsiMemObject* other = tsi_NewMemhandler(nullptr);
  void* foreign = tsi_AllocMem(other, 4);
  EXPECT_EQ(CodeOf([&] { tsi_DeAllocMem(mem, foreign); }), 10015);
  EXPECT_EQ(CodeOf([&] { tsi_ReAllocMem(mem, foreign, 8); }), 10014);
  tsi_DeleteMemhandler(other);
  EXPECT_EQ(CodeOf([] { tsi_AllocMem(nullptr, 4); }), 10011);
  tsi_DeAllocMem(mem, nullptr);
  EXPECT_EQ(tsi_ReAllocMem(mem, nullptr, 4), nullptr);
}

TEST_F(MemoryHandler, KeepsToItsBudget) {
  EXPECT_EQ(CodeOf([&] { tsi_AllocMem(mem, kMaxBlockBytes + 1); }), 10008);
  EXPECT_EQ(CodeOf([&] { tsi_NewArray<uint64_t>(mem, 0x20000001); }), 10008);  // 2^32 + 8 bytes
  void* half = tsi_AllocMem(mem, kMaxBlockBytes);
  void* rest = tsi_AllocMem(mem, kMaxBlockBytes - 100);
  EXPECT_EQ(CodeOf([&] { tsi_AllocMem(mem, 101); }), 10008);
  rest = tsi_ReAllocMem(mem, rest, kMaxBlockBytes);
  tsi_DeAllocMem(mem, rest);
  tsi_DeAllocMem(mem, half);
  EXPECT_EQ(mem->totalBytes, 0u);
}

TEST_F(MemoryHandler, ReallocationKeepsContents) {
  auto* block = static_cast<uint8_t*>(tsi_AllocMem(mem, 3));
  std::copy_n("abc", 3, block);
  block = static_cast<uint8_t*>(tsi_ReAllocMem(mem, block, 100000));
  EXPECT_EQ(std::string(block, block + 3), "abc");
  EXPECT_EQ(block[100000], 0x5A);
  EXPECT_EQ(mem->numPointers, 1);
}

TEST_F(MemoryHandler, AFailureFreesAllButWhatCallersHold) {
  int err;
  const uint8_t bytes[] = {1, 2, 3};
  InputStream* in = New_InputStream3(mem, bytes, 3, &err);
  tsi_AllocMem(mem, 50);
  tsi_Enter(mem, &err, [&] { tsi_Error(mem, kT2KNoGlyph); });
  EXPECT_EQ(err, 10005);
  EXPECT_EQ(mem->numPointers, 1);
  EXPECT_EQ(New_InputStream3(mem, bytes, 3, &err), nullptr);
  EXPECT_EQ(err, 10005);
  Delete_InputStream(in, &err);
  EXPECT_EQ(err, 10005);
  EXPECT_EQ(mem->numPointers, 0);
}

TEST(Streams, EntriesRefuseANullHandler) {
  int err = 0;
  EXPECT_EQ(New_InputStream3(nullptr, nullptr, 0, &err), nullptr);
  EXPECT_EQ(err, 10000);
}

bool ReadFromVector(void* id, uint8_t* destination, uint32_t position, uint32_t count) {
  auto& source = *static_cast<std::vector<uint8_t>*>(id);
  if (position + count > source.size()) return false;
  std::copy_n(source.begin() + position, count, destination);
  return true;
}

TEST(Streams, ReadAlikeFromMemoryAndThroughACallback) {
  std::vector<uint8_t> bytes = {0xFE, 0x01, 0x02, 0x03, 0x80, 0xFF, 0x85, 0x82, 0x01, 0x7F};
  for (bool throughCallback : {false, true}) {
    int err;
    tsiMemObject* mem = tsi_NewMemhandler(&err);
    InputStream* in = throughCallback ? New_NonRamInputStream(mem, ReadFromVector, &bytes, 10, &err)
                                      : New_InputStream3(mem, bytes.data(), 10, &err);
    EXPECT_EQ(ReadUInt8(*in), 0xFE);
    EXPECT_EQ(ReadUInt32(*in), 0x01020380u);
    EXPECT_EQ(ReadInt16(*in), -123);
    EXPECT_EQ(ReadSevenBitGroups(*in), 2u + (1u << 7));
    EXPECT_EQ(CodeOf([&] { ReadUInt16(*in); }), kT2KDamagedFont);  // one byte is left
    {
      SubStream part(*in, 1, 4);
      EXPECT_EQ(ReadUInt16(*part), 0x0102);
      EXPECT_EQ(ReadUInt16(*part), 0x0380);
      EXPECT_EQ(CodeOf([&] { ReadUInt8(*part); }), kT2KDamagedFont);
      SubStream beyond(*in, 8, 100);  // is cut
      EXPECT_EQ(BytesLeft(*beyond), 2u);
      SubStream outside(*in, 0xFFFFFFF0, 100);
      EXPECT_EQ(BytesLeft(*outside), 0u);
    }
    Delete_InputStream(in, &err);
    EXPECT_EQ(mem->numPointers, 0);
    tsi_DeleteMemhandler(mem);
  }
}

}  // namespace
