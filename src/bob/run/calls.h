// Calls into scripts. Each raises what the callee raises, so the outermost goes through bobTry.
#pragma once

#include <initializer_list>
#include <string_view>

#include "bob/base/value.h"

struct BobScope;

BobValue bobCall(BobScope* scope, BobValue function, std::initializer_list<BobValue> arguments);
BobValue bobCallByName(BobScope* scope, std::string_view name, std::initializer_list<BobValue> arguments);
BobValue bobSend(BobInterp* interp, BobValue object, BobValue selector, std::initializer_list<BobValue> arguments);
BobValue bobSend(BobInterp* interp, BobValue object, std::string_view selector,
                 std::initializer_list<BobValue> arguments);

// Runs `body` under an unwind target: false if an error arrived (it has been printed), with the registers as before.
bool bobTry(BobInterp* interp, void (*body)(void* data), void* data);
template <typename Body>
bool bobTry(BobInterp* interp, Body body) {
  return bobTry(
      interp, [](void* data) { (*static_cast<Body*>(data))(); }, &body);
}
