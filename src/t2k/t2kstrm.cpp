#include "t2k/t2kstrm.h"

#include <algorithm>

namespace {

void ForgetStream(void* object) {
  auto* stream = static_cast<InputStream*>(object);
  stream->privateBase = nullptr;
  stream->readToRam = nullptr;
  stream->maxPos = 0;
}

InputStream* NewStream(tsiMemObject* mem, uint32_t length) {
  auto* stream = tsi_NewRecord<InputStream>(mem);
  stream->mem = mem;
  stream->maxPos = length;
  tsi_HoldByCaller(mem, stream, ForgetStream);
  return stream;
}

}  // namespace

InputStream* New_InputStream3(tsiMemObject* mem, const uint8_t* bytes, uint32_t length, int* errCode) {
  return tsi_Enter(mem, errCode, [&] {
    InputStream* stream = NewStream(mem, bytes ? length : 0);
    stream->privateBase = bytes;
    return stream;
  });
}

InputStream* New_NonRamInputStream(tsiMemObject* mem, ReadToRamFunc read, void* id, uint32_t length, int* errCode) {
  return tsi_Enter(mem, errCode, [&] {
    InputStream* stream = NewStream(mem, read ? length : 0);
    stream->readToRam = read;
    stream->nonRamID = id;
    return stream;
  });
}

void Delete_InputStream(InputStream* stream, int* errCode) {
  if (errCode) *errCode = 0;
  if (!stream) return;
  tsi_DeleteHeld(stream->mem, stream, errCode, [] {});
}

SubStream::SubStream(const InputStream& whole, uint32_t offset, uint32_t length) : stream_(whole) {
  const uint32_t begin = uint32_t(std::min<uint64_t>(uint64_t{whole.posZero} + offset, whole.maxPos));
  const uint32_t size = std::min(length, whole.maxPos - begin);
  stream_.copy = nullptr;
  stream_.pos = stream_.posZero = begin;
  stream_.maxPos = begin + size;
  if (whole.privateBase || !size) return;

  stream_.copy = tsi_NewArray<uint8_t>(whole.mem, size);
  if (!whole.readToRam(whole.nonRamID, stream_.copy, begin, size)) {
    tsi_DeAllocMem(whole.mem, stream_.copy);
    tsi_Error(whole.mem, kT2KDamagedFont);
  }
  stream_.privateBase = stream_.copy;
  stream_.maxPos -= begin;
  stream_.pos = stream_.posZero = 0;
}

SubStream::~SubStream() { tsi_DeAllocMem(stream_.mem, stream_.copy); }

void SeekTo(InputStream& in, uint32_t offset) {
  tsi_Assert(in.mem, offset <= in.maxPos - in.posZero);
  in.pos = in.posZero + offset;
}

void SkipBytes(InputStream& in, uint32_t count) {
  tsi_Assert(in.mem, count <= BytesLeft(in));
  in.pos += count;
}

void ReadBytes(InputStream& in, uint8_t* destination, uint32_t count) {
  tsi_Assert(in.mem, count <= BytesLeft(in));
  if (!count) return;
  if (in.privateBase) {
    std::memcpy(destination, in.privateBase + in.pos, count);
  } else {
    tsi_Assert(in.mem, in.readToRam && in.readToRam(in.nonRamID, destination, in.pos, count));
  }
  in.pos += count;
}

KeptBytes KeepBytes(InputStream& in, uint32_t count) {
  tsi_Assert(in.mem, count <= BytesLeft(in));
  if (in.privateBase && !in.copy) {
    const uint8_t* const at = in.privateBase + in.pos;
    in.pos += count;
    return {at, nullptr};
  }
  uint8_t* const copy = tsi_NewArray<uint8_t>(in.mem, count);
  ReadBytes(in, copy, count);
  return {copy, copy};
}

uint8_t ReadByteThroughCallback(InputStream& in) {
  tsi_Assert(in.mem, in.readToRam && in.readToRam(in.nonRamID, &in.tmp, in.pos, 1));
  in.pos++;
  return in.tmp;
}

uint32_t ReadSevenBitGroups(InputStream& in) {
  uint32_t value = 0;
  for (int shift = 0; shift < 35; shift += 7) {
    const uint8_t byte = ReadUInt8(in);
    value |= uint32_t(byte & 0x7F) << shift;
    if (!(byte & 0x80)) return value;
  }
  tsi_Error(in.mem, kT2KDamagedFont);
}
