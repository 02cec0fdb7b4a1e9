// A value on its way between a widget and a script.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/events/event.h"

struct KuiValue {
  enum Kind : uint32_t { kNil = 0, kString = 1, kInteger = 2 };

  uint32_t kind = kNil;
  std::string_view string{};  // looks into somebody's buffer; good until that changes
  int32_t integer = 0;
};

// Answers an event that asks for a value with an integer; 0 when it has no place for one.
inline int eventAnswerInteger(const Event& event, int32_t integer) {
  KuiValue* out = eventPointer<KuiValue>(event);
  if (!out) return 0;
  out->kind = KuiValue::kInteger;
  out->integer = integer;
  return 1;
}
