// Page files: a page made of the input is loaded, drawn and driven with keys and time.
//
// The first byte says how many of the following are actions; what is left is the page. It lies under the name "p", so
// that a page can hold itself. Tens of thousands of widgets, which tables that share their parts make of a few bytes,
// take seconds to load and reach nothing new.
#include "kit/source/pagelimits.h"
#include "player.h"
#include "support/looking.h"

namespace {

constexpr const char* kKeys[] = {"Up",      "Down",     "Left",      "Right", "Select", "Clear", "Backspace", "UpLeft",
                                 "UpRight", "DownLeft", "DownRight", "S",     "0",      "1",     "2",         "5"};
constexpr uint32_t kMostWidgets = 200;

void act(HeadlessDesktop& desktop, uint8_t action) {
  if (action >= 0xC0) return desktop.wait(action - 0xC0u);
  desktop.key(kKeys[action % std::size(kKeys)]);
  desktop.settle();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size - 1 < data[0]) return 0;
  const uint8_t* actions = data + 1;
  const uint8_t* page = actions + data[0];
  const std::vector<uint8_t> bytes(page, data + size);
  if (pageHasTooManyWidgets(bytes, kMostWidgets)) return 0;
  HeadlessDesktop& desktop = playerWithoutPage();
  const LoadLimit limit(desktop.shell.engine);
  writeBytes(kSelf, bytes.data(), bytes.size());
  if (desktop.shell.loadPage(kSelf)) desktop.settle();
  for (size_t i = 0; i < data[0]; ++i) act(desktop, actions[i]);
  lookAtAll(desktop.shell.engine, kLookedAt);
  return 0;
}
