#include "engine/text/glyphwarming.h"

#include <memory>
#include <new>

#include "engine/base/log.h"
#include "engine/events/timer.h"
#include "engine/text/utf8.h"
#include "gfx/foundation/hsfixed.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "host/host.h"

namespace {

constexpr uint32_t kInterval = 10;  // milliseconds between two firings
constexpr size_t kPerFiring = 20;   // characters
constexpr size_t kLongestText = 1 << 20;

constexpr hsFixed kScreenPixelShape = 58254;  // 8/9, of the 720 x 480 picture
constexpr uint16_t kLargestWarmed = 1024;     // pixels

// The characters at the beginning of the text, `most` at most, that decode; `count` is how many.
std::string_view headOf(std::string_view text, size_t most, size_t* count) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  size_t used = 0;
  int length = 0;
  for (*count = 0; *count < most && utf8Decode(bytes + used, text.size() - used, &length) >= 0; ++*count)
    used += size_t(length);
  return text.substr(0, used);
}

}  // namespace

bool GlyphWarming::start() {
  timer = new (std::nothrow) Timer([](Timer*, TimerReason reason) {
    if (reason == TimerReason::fired) currentGlyphWarming().warmSome();
  });
  return timer != nullptr;
}

void GlyphWarming::stop() {
  requests.clear();
  if (timer) timerDestroy(timer);
  timer = nullptr;
}

bool GlyphWarming::request(const TextStyle& style, std::string_view text) {
  if (!timer || text.size() > kLongestText) return false;
  size_t count;
  text = headOf(text, text.size(), &count);  // what doesn't decode would never be finished
  if (count == 0) return true;
  if (!timerIsListed(timer)) timerStart(timer, kInterval, false);
  requests.push_front({style, std::string(text)});
  return true;
}

void GlyphWarming::warmSome() {
  for (size_t budget = kPerFiring; budget > 0 && !requests.empty();) {
    Request& request = requests.front();
    size_t count;
    const std::string_view piece = headOf(std::string_view(request.text).substr(request.done), budget, &count);
    budget -= count;
    if (logVerbose) hostLog("Caching '%.*s'\n", int(piece.size()), piece.data());
    request.done += piece.size();  // whether there is memory for their glyphs or not
    textWarm(request.style, piece.data(), uint32_t(piece.size()));
    if (request.done == request.text.size()) requests.pop_front();
  }
  if (!requests.empty()) timerStart(timer, kInterval, false);
}

bool glyphWarmingRequest(const TextStyle& style, std::string_view text) {
  return currentGlyphWarming().request(style, text);
}

void textWarm(const TextStyle& style, const char* text, uint32_t bytes) {
  if (!style.font || style.size == 0 || style.size > kLargestWarmed) return;
  const int32_t side = 2 * style.size;
  const std::unique_ptr<uint16_t[]> scratch(new (std::nothrow) uint16_t[size_t(side) * size_t(side)]());
  if (!scratch) return;
  hsGBitmap bitmap;
  bitmap.SetConfig(hsGBitmap::kConfig_RGB16);
  bitmap.fWidth = bitmap.fHeight = uint32_t(side);
  bitmap.fRowBytes = 4u * style.size;
  bitmap.fImage = scratch.get();
  hsGRasterDevice device;
  device.SetBitmap(&bitmap);
  // Neither encoding nor flags: this is the strike of plain single bytes.
  hsGAttribute paint;
  paint.SetFontID(style.font->scalerFont);
  hsGTextFace face;
  face.fScaleX = kScreenPixelShape;
  paint.SetTextFace(&face);
  paint.SetTextSize(hsIntToFixed(style.size));
  const auto* at = reinterpret_cast<const uint8_t*>(text);
  int length = 0;
  for (; utf8Decode(at, bytes, &length) >= 0; at += length, bytes -= uint32_t(length))
    device.DrawText(uint32_t(length), at, hsIntToFixed(style.size), hsIntToFixed(style.size), &paint);
  device.SetBitmap(nullptr);
}
