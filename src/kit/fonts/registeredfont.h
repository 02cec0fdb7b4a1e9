// A font in the library's registry for as long as it is looked at.
#pragma once

#include <cstdint>
#include <vector>

#include "gfx/text/hsgfontregistry.h"

class RegisteredFont {
 public:
  // The bytes stay the caller's and must outlive this.
  explicit RegisteredFont(const std::vector<uint8_t>& bytes)
      : id(hsGFontRegistry::RegisterMemory(uint32_t(bytes.size()), bytes.data(), false, 0)) {}
  ~RegisteredFont() { hsGFontRegistry::UnregisterFont(id); }
  RegisteredFont(const RegisteredFont&) = delete;
  RegisteredFont& operator=(const RegisteredFont&) = delete;

  const uint32_t id;
};
