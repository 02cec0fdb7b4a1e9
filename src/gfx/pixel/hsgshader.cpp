#include "gfx/pixel/hsgshader.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "gfx/vector/hsmeta.h"

namespace {

constexpr const char kTransformKey[] = "transform";
constexpr int32_t kMatrixWords = 9;
static_assert(sizeof(hsMatrix) == kMatrixWords * sizeof(int32_t), "flattens as 36 bytes");

}  // namespace

hsGShader::hsGShader(const void** cursor, int32_t currentSize) : hsGSizedFlattenable(cursor, currentSize) {
  if (!cursor || !*cursor) return;  // reported by the base
  std::memcpy(&fLocalMatrix, *cursor, sizeof fLocalMatrix);
  *cursor = static_cast<const char*>(*cursor) + sizeof fLocalMatrix;
}

hsGShader::hsGShader(const hsMeta& meta) : hsGSizedFlattenable(meta) {
  if (meta.GetScalars(kTransformKey, nullptr) == kMatrixWords) meta.GetScalars(kTransformKey, fLocalMatrix.fMap[0]);
}

int32_t hsGShader::Flatten(void* buffer) const {
  const int32_t base = hsGSizedFlattenable::Flatten(buffer);
  if (buffer) std::memcpy(static_cast<char*>(buffer) + base, &fLocalMatrix, sizeof fLocalMatrix);
  return base + int32_t{sizeof fLocalMatrix};
}

void hsGShader::Describe(hsMeta* meta, hsMeta* writer) const {
  hsGSizedFlattenable::Describe(meta, writer);
  const hsMatrix identity;
  if (meta) meta->AddScalars(kTransformKey, kMatrixWords, identity.fMap[0]);
  if (writer && fLocalMatrix != identity) writer->AddScalars(kTransformKey, kMatrixWords, fLocalMatrix.fMap[0]);
}

void hsGShader::ShadeAlphaRow(int32_t y, int32_t x, int32_t count, uint8_t bytes[]) {
  if (IsOpaque()) {
    std::memset(bytes, 0xFF, size_t(count));
    return;
  }
  hsGColor32 colors[32] = {};  // a shader may leave them as they are
  while (count > 0) {
    const int32_t chunk = std::min<int32_t>(count, std::size(colors));
    ShadeRow(y, x, chunk, colors);
    for (int32_t i = 0; i < chunk; ++i) *bytes++ = uint8_t(hsColor32A(colors[i]));
    x += chunk;
    count -= chunk;
  }
}
