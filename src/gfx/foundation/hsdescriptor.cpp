#include "gfx/foundation/hsdescriptor.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmemory.h"

namespace {

struct Entry {
  uint32_t fTag;
  uint32_t fLength;  // bytes of data, which follows
};

constexpr uint32_t kHeaderSize = sizeof(hsDescriptor);

constexpr uint64_t Padded(uint64_t length) { return (length + 3) & ~uint64_t{3}; }

char* BytesOf(hsDescriptor* desc) { return reinterpret_cast<char*>(desc); }
const char* BytesOf(const hsDescriptor* desc) { return reinterpret_cast<const char*>(desc); }

Entry EntryAt(const hsDescriptor* desc, uint32_t offset) {
  Entry entry;
  std::memcpy(&entry, BytesOf(desc) + offset, sizeof entry);
  return entry;
}

// The offset of the first entry with the tag, or 0. desc is valid.
uint32_t OffsetOf(const hsDescriptor* desc, uint32_t tag) {
  uint32_t offset = kHeaderSize;
  for (uint32_t i = 0; i < desc->fCount; ++i) {
    const Entry entry = EntryAt(desc, offset);
    if (entry.fTag == tag) return offset;
    offset += uint32_t(sizeof(Entry) + Padded(entry.fLength));
  }
  return 0;
}

uint32_t FindWord(const hsDescriptor* desc, uint32_t tag, const char* message) {
  int32_t length = 0;
  const void* data = hsDescriptor::Find(desc, tag, &length);
  if (!hsAssert(data && length == 4, message)) return 0;
  uint32_t word;
  std::memcpy(&word, data, 4);
  return word;
}

}  // namespace

bool hsDescriptor::Validate(const hsDescriptor* desc) {
  if (!hsAssert(desc, "hsDescriptor is nil") || !hsAssert(desc->fCount <= kMaxCount, "bad count")) return false;
  uint64_t offset = kHeaderSize;
  for (uint32_t i = 0; i < desc->fCount && offset + sizeof(Entry) <= desc->fLength; ++i)
    offset += sizeof(Entry) + Padded(EntryAt(desc, uint32_t(offset)).fLength);
  return hsAssert(offset == desc->fLength, "bad length");
}

int32_t hsDescriptor::ComputeSize(int32_t count, const int32_t lengths[]) {
  uint64_t size = kHeaderSize;
  for (int32_t i = 0; i < count; ++i) size += sizeof(Entry) + Padded(uint32_t(lengths[i]));
  return int32_t(size);
}

hsDescriptor* hsDescriptor::New(int32_t size) {
  if (!hsAssert(size >= int32_t{kHeaderSize} && size % 4 == 0, "bad size")) return nullptr;
  hsDescriptor* desc = static_cast<hsDescriptor*>(hsMemory::New(size));
  Init(desc);
  return desc;
}

void hsDescriptor::Init(hsDescriptor* desc) { *desc = {kHeaderSize, 0, 0}; }

void hsDescriptor::Delete(hsDescriptor* desc) {
  Validate(desc);
  hsMemory::Delete(desc);
}

hsDescriptor* hsDescriptor::Copy(const hsDescriptor* src, hsDescriptor* dst) {
  if (!Validate(src) || dst == src) return dst;
  if (!dst) dst = New(int32_t(src->fLength));
  std::memcpy(static_cast<void*>(dst), src, src->fLength);
  return dst;
}

bool hsDescriptor::Equal(const hsDescriptor* a, const hsDescriptor* b) {
  if (!Validate(a) || !Validate(b)) return false;
  return a->fLength == b->fLength && std::memcmp(a, b, a->fLength) == 0;
}

void* hsDescriptor::Add(hsDescriptor* desc, uint32_t tag, int32_t length) {
  if (!Validate(desc) || !hsAssert(desc->fCount < kMaxCount, "bad count")) return nullptr;
  if (!hsAssert(length >= 0, "bad length")) return nullptr;
  const Entry entry{tag, uint32_t(length)};
  const uint32_t padded = uint32_t(Padded(entry.fLength));
  char* at = BytesOf(desc) + desc->fLength;
  std::memcpy(at, &entry, sizeof entry);
  at += sizeof entry;
  if (padded != entry.fLength) std::memset(at + padded - 4, 0, 4);
  desc->fCount += 1;
  desc->fLength += padded + uint32_t(sizeof entry);
  return at;
}

const void* hsDescriptor::Find(const hsDescriptor* desc, uint32_t tag, int32_t* length, void* buffer) {
  if (!Validate(desc)) return nullptr;
  const uint32_t offset = OffsetOf(desc, tag);
  if (offset == 0) return nullptr;
  const Entry entry = EntryAt(desc, offset);
  const char* data = BytesOf(desc) + offset + sizeof entry;
  if (length) *length = int32_t(entry.fLength);
  if (buffer) std::memcpy(buffer, data, entry.fLength);
  return data;
}

void* hsDescriptor::Find(hsDescriptor* desc, uint32_t tag, int32_t* length, void* buffer) {
  return const_cast<void*>(Find(const_cast<const hsDescriptor*>(desc), tag, length, buffer));
}

uint32_t hsDescriptor::Find32(const hsDescriptor* desc, uint32_t tag) { return FindWord(desc, tag, "bad Find32"); }

hsScalar hsDescriptor::FindScalar(const hsDescriptor* desc, uint32_t tag) {
  return hsScalar(FindWord(desc, tag, "bad FindScalar"));
}

void hsDescriptor::Remove(hsDescriptor* desc, uint32_t tag) {
  if (!Validate(desc)) return;
  const uint32_t offset = OffsetOf(desc, tag);
  if (offset == 0) return;
  const uint32_t size = uint32_t(sizeof(Entry) + Padded(EntryAt(desc, offset).fLength));
  if (!hsAssert(offset + size <= desc->fLength, "bad remaining")) return;
  std::memmove(BytesOf(desc) + offset, BytesOf(desc) + offset + size, desc->fLength - offset - size);
  desc->fLength -= size;
  desc->fCount -= 1;
}

void hsDescriptor::ComputeCheckSum(hsDescriptor* desc) {
  if (!Validate(desc)) return;
  desc->fCheckSum = 0;
  uint32_t sum = 0;
  for (uint32_t offset = 0; offset < desc->fLength; offset += 4) {
    uint32_t word;
    std::memcpy(&word, BytesOf(desc) + offset, 4);
    sum += word;
  }
  desc->fCheckSum = sum;
}
