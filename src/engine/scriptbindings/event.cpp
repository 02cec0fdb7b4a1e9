// The class Event: the seven words of an event, read-only.
#include <array>
#include <cstring>

#include "engine/scriptbindings/bindings.h"

namespace {

using Words = std::array<uint32_t, kEventSize / 4>;

enum Word { kSize, kTime, kClass, kCode, kKeyCode, kParam0, kParam1 };

// All zero in an instance that holds no event: every event has a size or a code.
Words wordsOf(BobInterp* interp, BobValue event) {
  Words words{};
  if (bobIsOfKind(interp, event, currentScripts().eventKind))
    std::memcpy(words.data(), bobExtraBytes(interp, event), kEventSize);
  return words;
}

template <Word kWord, int kShift = 0, uint32_t kMask = 0xFFFFFFFF>
BobValue get(BobInterp* interp, BobValue event) {
  const Words words = wordsOf(interp, event);
  if (words == Words{}) return kBobNil;
  return bobMakeInteger(interp, int32_t(words[kWord] >> kShift & kMask));
}

constexpr BobPropertyRow kProperties[] = {
    {"timeStamp", get<kTime>, nullptr},   {"id", get<kCode>, nullptr},
    {"classId", get<kCode, 16>, nullptr}, {"eventId", get<kCode, 0, 0xFFFF>, nullptr},
    {"keyCode", get<kKeyCode>, nullptr},  {"param0", get<kParam0>, nullptr},
    {"param1", get<kParam1>, nullptr},    {nullptr, nullptr, nullptr},
};

}  // namespace

BobValue scriptWrapEvent(BobInterp* interp, const Event& event) {
  const BobValue wrapper = bobMakeNative(interp, currentScripts().eventKind);
  const Words words = {event.size, event.time, event.eventClass, event.code, event.keyCode, event.data, event.data2};
  std::memcpy(bobExtraBytes(interp, wrapper), words.data(), kEventSize);
  return wrapper;
}

bool scriptDefineEvents(ScriptRuntime& runtime) {
  runtime.eventKind = bobMakeKind(runtime.interp, 0, "Event", nullptr, kProperties, kEventSize);
  return runtime.eventKind != 0;
}
