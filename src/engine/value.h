// A value on its way between a widget and a script.
#pragma once

#include <cstdint>
#include <string_view>

struct KuiValue {
  enum Kind : uint32_t { kNil = 0, kString = 1, kInteger = 2 };

  uint32_t kind = kNil;
  std::string_view string{};  // looks into somebody's buffer; good until that changes
  int32_t integer = 0;
};
