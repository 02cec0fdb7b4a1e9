// Reading the arguments of a native method by a signature text.
//
// The text is walked together with the arguments: the first code is `this`, the second `_next`, then the arguments.
//   *   any value, skipped              B   1 unless the value is false            (int32_t*)
//   V   the value                       V=  the value, checked to be of a kind     (uint32_t kind, BobValue*)
//   P   a CObject's native pointer      P=  the same, of a checked kind            (uint32_t kind, void**)
//   S   text of a String                S?  null for nil                           (const char**)
//   S#  text and length, also S?#       (const char**, int32_t*)
//   c s i l  an integer                 (int8_t*, int16_t*, int32_t*, int32_t*)
//   d f      a Float, no integer        (double*, float*)
//   |   what follows is optional: a missing argument leaves its output alone
// Wrong kinds raise error 5, wrong numbers 3 or 4. Texts point into the heap: read them before the next allocation.
//
//   BobValue vector, n = ...;
//   bobParse(interp, "V=*|i", kBobVector, &vector, &n);
//
// Whether the outputs suit the text is checked when the call is compiled.
#pragma once

#include <type_traits>

#include "bob/base/value.h"

// One argument of bobParse, whatever its type.
struct BobParseSlot {
  uint32_t kind = 0;
  void* output = nullptr;
  BobParseSlot(uint32_t kind) : kind(kind) {}
  BobParseSlot(BobType kind) : kind(kind) {}
  template <typename T>
  BobParseSlot(T* output) : output(output) {}
};

namespace BobSignatureCheck {

enum class Slot { kKind, kInt8, kInt16, kInt32, kValue, kPointer, kText, kDouble, kFloat, kOther };

// A kind and a BobValue are both a uint32_t; a kind is passed by value, and where to put a value by a pointer.
template <typename T>
constexpr Slot slotOf() {
  if constexpr (std::is_same_v<T, uint32_t> || std::is_same_v<T, BobType>) return Slot::kKind;
  if constexpr (std::is_same_v<T, int8_t*>) return Slot::kInt8;
  if constexpr (std::is_same_v<T, int16_t*>) return Slot::kInt16;
  if constexpr (std::is_same_v<T, int32_t*>) return Slot::kInt32;
  if constexpr (std::is_same_v<T, BobValue*>) return Slot::kValue;
  if constexpr (std::is_same_v<T, void**>) return Slot::kPointer;
  if constexpr (std::is_same_v<T, const char**>) return Slot::kText;
  if constexpr (std::is_same_v<T, double*>) return Slot::kDouble;
  if constexpr (std::is_same_v<T, float*>) return Slot::kFloat;
  return Slot::kOther;
}

constexpr bool suits(const char* text, const Slot* slots, int count) {
  int at = 0;
  const auto take = [&](Slot slot) { return at < count && slots[at++] == slot; };
  for (; *text; ++text) {
    bool ok = true;
    switch (*text) {
      case '*':
      case '|': break;
      case 'V':
      case 'P':
        if (text[1] == '=') ok = take(Slot::kKind);
        ok = take(*text == 'V' ? Slot::kValue : Slot::kPointer) && ok;
        if (text[1] == '=') ++text;
        break;
      case 'S':
        ok = take(Slot::kText);
        if (text[1] == '?') ++text;
        if (text[1] == '#') ok = take(Slot::kInt32) && ok, ++text;
        break;
      case 'c': ok = take(Slot::kInt8); break;
      case 's': ok = take(Slot::kInt16); break;
      case 'B':
      case 'i':
      case 'l': ok = take(Slot::kInt32); break;
      case 'd': ok = take(Slot::kDouble); break;
      case 'f': ok = take(Slot::kFloat); break;
      default: ok = false;
    }
    if (!ok) return false;
  }
  return at == count;
}

inline void signatureDoesNotSuitItsOutputs() {}  // not constexpr: naming it ends the compilation

}  // namespace BobSignatureCheck

template <typename... Slots>
struct BobSignature {
  consteval BobSignature(const char* text) : text(text) {
    constexpr BobSignatureCheck::Slot slots[] = {BobSignatureCheck::slotOf<Slots>()...,
                                                 BobSignatureCheck::Slot::kOther};
    if (!BobSignatureCheck::suits(text, slots, sizeof...(Slots))) BobSignatureCheck::signatureDoesNotSuitItsOutputs();
  }
  const char* text;
};

// For a text that is only known at run time: a bad code raises error 12.
void bobParseSlots(BobInterp* interp, const char* text, const BobParseSlot* slots);

template <typename... Slots>
void bobParse(BobInterp* interp, BobSignature<std::type_identity_t<Slots>...> signature, Slots... slots) {
  const BobParseSlot list[] = {BobParseSlot(slots)..., BobParseSlot(0u)};
  bobParseSlots(interp, signature.text, list);
}

// For methods that read argv by hand: raises error 3 unless there are so many slots or more, `this` and `_next`
// counted.
void bobCheckArgumentCount(BobInterp* interp, int least);
