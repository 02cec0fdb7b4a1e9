// A flat block of tagged entries whose bytes are its identity: the key of fonts and strikes.
//
// Two descriptors are equal when their words are, checksum and order of entries included, so a maker ends with
// ComputeCheckSum. A block is allocated at its full size up front; Add neither grows it nor looks at its size.
// Layout: length, checksum, count; then for each entry tag, data length, data with zeros to a whole word.
#pragma once

#include <cstdint>

#include "gfx/foundation/hstypes.h"

struct hsDescriptor {
  uint32_t fLength;    // bytes in use, this header included
  uint32_t fCheckSum;  // the sum of all words with this one 0
  uint32_t fCount;     // entries

  static constexpr uint32_t kMaxCount = 63;

  // Bytes for count entries with data of these lengths.
  static int32_t ComputeSize(int32_t count, const int32_t lengths[]);
  // An empty descriptor with space for size bytes; null for a size under 12 or not of whole words ("bad size").
  static hsDescriptor* New(int32_t size);
  static void Init(hsDescriptor* desc);
  static void Delete(hsDescriptor* desc);
  // Into dst, or into a new block when dst is null. Returns where it went.
  static hsDescriptor* Copy(const hsDescriptor* src, hsDescriptor* dst);
  static bool Equal(const hsDescriptor* a, const hsDescriptor* b);

  // Appends an entry and returns its data, to be filled in by the caller.
  static void* Add(hsDescriptor* desc, uint32_t tag, int32_t length);
  // The data of the first entry with the tag, or null. Its length goes to length and the data to buffer, if given.
  static const void* Find(const hsDescriptor* desc, uint32_t tag, int32_t* length = nullptr, void* buffer = nullptr);
  static void* Find(hsDescriptor* desc, uint32_t tag, int32_t* length = nullptr, void* buffer = nullptr);
  // 0 after the report when there is no such entry of 4 bytes.
  static uint32_t Find32(const hsDescriptor* desc, uint32_t tag);
  static hsScalar FindScalar(const hsDescriptor* desc, uint32_t tag);
  // Without an entry of the tag, nothing.
  static void Remove(hsDescriptor* desc, uint32_t tag);

  static void ComputeCheckSum(hsDescriptor* desc);
  // "hsDescriptor is nil", "bad count", "bad length": whether desc is one.
  static bool Validate(const hsDescriptor* desc);
};

static_assert(sizeof(hsDescriptor) == 12);
