// Effects as bytes, and their rebuilding for another text size.
#include <cstring>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgcreateproc.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/vector/hsgpatheffect.h"

namespace {

constexpr int32_t kNumberBytes = 4;

// The effect made anew for the size, or itself when it can't be or needn't.
template <class Effect>
hsRef<Effect> Rebuilt(Effect* effect, int32_t size) {
  if (!effect) return nullptr;
  const hsGCreateProc create = hsGFindCreateProc(effect->GetCreateProc());
  if (!create || effect->StdSize() == size) return hsShare(effect);
  std::vector<char> bytes(size_t(hsGAttribute::FlattenEffect(*effect, nullptr)));
  hsGAttribute::FlattenEffect(*effect, bytes.data());
  const void* cursor = bytes.data() + kNumberBytes;
  auto* rebuilt = dynamic_cast<Effect*>(create(&cursor, size));
  return rebuilt ? hsAdopt(rebuilt) : hsShare(effect);
}

}  // namespace

int32_t hsGAttribute::FlattenEffect(const hsGSizedFlattenable& effect, void* buffer) {
  const uint32_t number = effect.GetCreateProc();
  (void)hsAssert(number != 0, "need create-proc");
  const int32_t size = effect.Flatten(nullptr) + kNumberBytes;
  if (!buffer) return size;
  std::memcpy(buffer, &number, kNumberBytes);
  const int32_t written = effect.Flatten(static_cast<char*>(buffer) + kNumberBytes) + kNumberBytes;
  if (written != size) hsDebugMessage("flatten sizes differ", written - size);
  return size;
}

hsGAttribute* hsGAttribute::MakeCopyForScale(int32_t size) const {
  if (size < 1) size = fTextSize;
  auto copy = hsMake<hsGAttribute>();
  copy->CopyFrom(*this);
  const auto replace = [&](auto* effect, auto set) { (copy.get()->*set)(Rebuilt(effect, size).get()); };
  replace(PathEffect(), &hsGAttribute::SetPathEffect);
  replace(Rasterizer(), &hsGAttribute::SetRasterizer);
  replace(MaskFilter(), &hsGAttribute::SetMaskFilter);
  return copy.release();
}
