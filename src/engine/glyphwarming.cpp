#include "engine/glyphwarming.h"

#include <list>
#include <new>
#include <string>

#include "engine/core.h"
#include "engine/textstyle.h"
#include "engine/timer.h"
#include "host/host.h"

namespace {

constexpr uint32_t kInterval = 10;  // milliseconds between two firings
constexpr size_t kPerFiring = 20;   // characters
constexpr size_t kLongestText = 1 << 20;

struct Request {
  TextStyle style;
  std::string text;
  size_t done = 0;  // bytes
};

std::list<Request> requests;  // the head is under way
Timer* timer = nullptr;

// The characters at the beginning of the text, `most` at most, that decode; `count` is how many.
std::string_view headOf(std::string_view text, size_t most, size_t* count) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  size_t used = 0;
  int length = 0;
  for (*count = 0; *count < most && utf8Decode(bytes + used, text.size() - used, &length) >= 0; ++*count)
    used += size_t(length);
  return text.substr(0, used);
}

void warmSome() {
  for (size_t budget = kPerFiring; budget > 0 && !requests.empty();) {
    Request& request = requests.front();
    size_t count;
    const std::string_view piece = headOf(std::string_view(request.text).substr(request.done), budget, &count);
    budget -= count;
    if (logVerbose) hostLog("Caching '%.*s'\n", int(piece.size()), piece.data());
    textWarm(request.style, piece.data(), uint32_t(piece.size()));
    request.done += piece.size();
    if (request.done == request.text.size()) requests.pop_front();
  }
  if (!requests.empty()) timerStart(timer, kInterval, false);
}

}  // namespace

int glyphWarmingStart() {
  timer = new (std::nothrow) Timer([](Timer*, TimerReason reason) {
    if (reason == TimerReason::fired) warmSome();
  });
  return timer != nullptr;
}

void glyphWarmingStop() {
  requests.clear();
  if (timer) timerDestroy(timer);
  timer = nullptr;
}

bool glyphWarmingRequest(const TextStyle& style, std::string_view text) {
  if (!timer || text.size() > kLongestText) return false;
  size_t count;
  text = headOf(text, text.size(), &count);  // what doesn't decode would never be done with
  if (count == 0) return true;
  if (requests.empty()) timerStart(timer, kInterval, false);
  requests.push_front({style, std::string(text)});
  return true;
}
