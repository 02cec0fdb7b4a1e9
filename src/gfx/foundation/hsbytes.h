// Numbers in bytes, in either order, whatever the machine's own order and alignment.
#pragma once

#include <cstdint>

constexpr uint16_t hsBig16(const uint8_t* p) { return uint16_t(p[0] << 8 | p[1]); }
constexpr uint32_t hsBig32(const uint8_t* p) { return uint32_t{hsBig16(p)} << 16 | hsBig16(p + 2); }
constexpr uint16_t hsLittle16(const uint8_t* p) { return uint16_t(p[1] << 8 | p[0]); }
constexpr uint32_t hsLittle32(const uint8_t* p) { return uint32_t{hsLittle16(p + 2)} << 16 | hsLittle16(p); }
constexpr uint64_t hsLittle64(const uint8_t* p) { return uint64_t{hsLittle32(p + 4)} << 32 | hsLittle32(p); }
