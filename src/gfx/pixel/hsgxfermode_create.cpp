// Transfer modes by the name of their class.
#include <cstring>

#include "gfx/pixel/hsgalphamode.h"

hsGXferMode* hsGXferMode::Create(const char* className, const hsMeta& meta) {
  using Maker = hsGXferMode* (*)(const hsMeta&);
  static constexpr struct {
    const char* name;
    Maker make;
  } kClasses[] = {{hsGAlphaCompositeMode::kClassName, &hsGAlphaCompositeMode::Create}};
  for (const auto& entry : kClasses)
    if (std::strcmp(entry.name, className) == 0) return entry.make(meta);
  return nullptr;
}
