// The class TextStyle.
//
// A wrapper has a copy of its style, so it outlives the page or widget that it comes from, and a change of either does
// not show in the other.
#include "engine/text/textstyle.h"

#include <string>

#include "engine/base/hostfile.h"
#include "engine/screen/display.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/text/glyphwarming.h"

namespace {

constexpr char kUsualGlyphs[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

void releaseStyle(BobInterp* interp, BobValue wrapper) {
  auto* held = static_cast<ScriptStyle*>(bobNativePointer(interp, wrapper));
  if (!held) return;
  held->handle.release();
  currentScripts().styles.erase(held->place);
}

void holdStyle(BobInterp* interp, BobValue wrapper, const TextStyle& style) {
  std::list<ScriptStyle> made(1, {.style = style, .handle = {}, .place = {}});
  ScriptStyle& held = made.front();
  held.place = made.begin();
  held.handle.make(interp, &held);
  currentScripts().styles.splice(currentScripts().styles.begin(), made);
  bobHandleOf(interp, wrapper) = held.handle.number();
}

bool findInteger(BobInterp* interp, const BobLocal& object, BobValue key, int32_t* out) {
  BobValue value;
  if (!bobGetProperty(interp, object, key, &value) || !bobIsInteger(interp, value)) return false;
  *out = bobIntegerValue(interp, value);
  return true;
}

// Of the object's properties, which a getter may make up on the spot. False without a font that can be read or without
// a size.
bool readStyle(BobInterp* interp, const BobLocal& object, TextStyle* style) {
  const StyleKeys& keys = currentScripts().styleKeys;
  BobValue font;
  if (!bobGetProperty(interp, object, keys.font, &font)) return false;
  if (!bobIsA(interp, font, kBobString)) bobRaise(interp, kBobWrongType, font);
  style->font = fontLoad(std::string(bobStringText(interp, font)).c_str());
  int32_t number;
  if (!style->font || !findInteger(interp, object, keys.size, &number)) return false;
  style->size = uint16_t(number);
  style->color = findInteger(interp, object, keys.color, &number) ? uint32_t(number) : standardColor(kColorWhite);
  if (findInteger(interp, object, keys.bgColor, &number)) {
    style->bgColor = uint32_t(number);
    style->styleFlags |= kTextStyleBackground;
  }
  // Kept in the same word as the background's colour; a style with both keeps this one.
  if (findInteger(interp, object, keys.aliasCount, &number)) style->bgColor = uint32_t(number);
  BobValue ignored;
  if (bobGetProperty(interp, object, keys.underline, &ignored)) style->styleFlags |= kTextStyleUnderline;
  return true;
}

BobValue initialize(BobInterp* interp) {
  BobValue self, given;
  bobParse(interp, "V=*V", currentScripts().styleKind, &self, &given);
  const BobLocal wrapper(interp, self), attributes(interp, given);
  TextStyle style;
  if (!readStyle(interp, attributes, &style)) return kBobNil;
  releaseStyle(interp, wrapper);  // one that it had before
  holdStyle(interp, wrapper, style);
  return wrapper;
}

BobValue cacheGlyphs(BobInterp* interp) {
  void* pointer;
  const char* text = kUsualGlyphs;
  bobParse(interp, "P=*|S", currentScripts().styleKind, &pointer, &text);
  return bobBoolean(pointer && glyphWarmingRequest(static_cast<ScriptStyle*>(pointer)->style, text));
}

BobValue cacheGlyphsFromFile(BobInterp* interp) {
  void* pointer;
  const char* path;
  bobParse(interp, "P=*S", currentScripts().styleKind, &pointer, &path);
  const HostFilePtr file = pointer && hostLetsScriptOpen(path, false) ? openHostFile(path) : nullptr;
  const auto bytes = file ? readWhole(file.get()) : std::nullopt;
  if (!bytes) return kBobFalse;
  const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
  return bobBoolean(glyphWarmingRequest(static_cast<ScriptStyle*>(pointer)->style, text));
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", initialize},
    {"CacheGlyphs", cacheGlyphs},
    {"CacheGlyphsFromFile", cacheGlyphsFromFile},
    {nullptr, nullptr},
};

}  // namespace

BobValue scriptWrapStyle(BobInterp* interp, const TextStyle* style) {
  const BobValue wrapper = bobMakeNative(interp, currentScripts().styleKind);
  holdStyle(interp, wrapper, *style);
  return wrapper;
}

const TextStyle* scriptStyleOf(BobInterp* interp, BobValue value) {
  if (!bobIsOfKind(interp, value, currentScripts().styleKind)) return nullptr;
  const auto* held = static_cast<const ScriptStyle*>(bobNativePointer(interp, value));
  return held ? &held->style : nullptr;
}

bool scriptDefineTextStyle(ScriptRuntime& runtime) {
  const auto symbol = [&](const char* name) { return bobIntern(runtime.interp, name); };
  runtime.styleKeys = {symbol("font"),     symbol("size"),      symbol("color"),     symbol("bgColor"),
                       symbol("tracking"), symbol("underline"), symbol("aliasCount")};
  runtime.styleKind = bobMakeKind(runtime.interp, 0, "TextStyle", kMethods, nullptr);
  if (runtime.styleKind) bobSetFinalizer(runtime.interp, runtime.styleKind, releaseStyle);
  return runtime.styleKind != 0;
}
