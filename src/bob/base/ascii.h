// Characters are classed as ASCII, whatever the host's locale says. A byte from 0x80 up is nothing, signed or not.
#pragma once

constexpr bool bobIsSpace(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool bobIsDigit(int c) { return c >= '0' && c <= '9'; }
constexpr bool bobIsLetter(int c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The digit's value, or -1 if it is none in the radix.
constexpr int bobDigitOf(int c, int radix) {
  const int value = bobIsDigit(c)          ? c - '0'
                    : c >= 'a' && c <= 'f' ? c - 'a' + 10
                    : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                           : 99;
  return value < radix ? value : -1;
}
