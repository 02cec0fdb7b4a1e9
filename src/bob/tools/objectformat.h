// Object files: the bytes "BOBO", a version and one record for each top-level statement, its code as a value.
//
// A value is a tag and what the tag says; all numbers are big-endian, and bytecode travels unchanged. A stream of
// records without the header is what a page keeps. `x = 1;` becomes
//
//     01 00000004                            code of four elements:
//        05 0000000a 31 02 00  19 03 00  1b 02 00  1e     its bytes: AFRAME 2 0, LIT 3, GSET 2, RETURN
//        00                                     no name
//        04 00000001 "x"                        symbol
//        06 00000001                            integer
#pragma once

#include <cstdint>

constexpr char kBobMagic[] = {'B', 'O', 'B', 'O'};
constexpr uint32_t kBobObjectVersion = 4;

enum BobObjectTag : uint8_t {
  kBobTagNil,
  kBobTagCode,     // count, elements
  kBobTagVector,   // count, elements
  kBobTagObject,   // parent, count, keys and values
  kBobTagSymbol,   // length, bytes
  kBobTagString,   // length, bytes
  kBobTagInteger,  // four bytes
  kBobTagFloat,    // eight bytes
};

constexpr int kBobValueDepth = 256;  // containers in containers, read or written
