// Events: what happened, in seven words, and the codes that the engine knows.
//
// There is no event queue: an event is delivered, all the way through scripts, inside the call that posts it.
#pragma once

#include <cstdint>
#include <variant>

struct KuiValue;
struct TextStyle;

// What one engine routine passes to another in addition to the words. A script sees and makes the words alone, so it
// can't forge a pointer; a reader that finds none of its kind answers 0.
using EventPointer =
    std::variant<std::monostate, KuiValue*, int32_t*, const char**, const char*, const TextStyle**, const TextStyle*>;

struct Event {
  uint32_t size = 0;        // 28 where the poster fills it; key events leave it 0
  uint32_t time = 0;        // hostMilliseconds at posting; 0 on key events and on internal sends
  uint32_t eventClass = 0;  // the code's upper half
  uint32_t code = 0;
  uint32_t keyCode = 0;  // nothing sets it; scripts can read it
  uint32_t data = 0;
  uint32_t data2 = 0;
  EventPointer pointer{};
};

inline constexpr uint32_t kEventSize = 28;  // bytes of the words
inline constexpr uint32_t kKeyClass = 8;

// Keys, posted by the host.
inline constexpr uint32_t kDirectionKey = 0x80001;  // data: direction flags
inline constexpr uint32_t kSelectKey = 0x80002;
inline constexpr uint32_t kBackspaceKey = 0x80003;
inline constexpr uint32_t kClearKey = 0x80004;
inline constexpr uint32_t kDigitKey = 0x80006;  // data: kDigitFlag + digit
inline constexpr uint32_t kLetterS = 0x80011;

inline constexpr uint32_t kDirectionUp = 1, kDirectionDown = 2, kDirectionLeft = 4, kDirectionRight = 8;
inline constexpr uint32_t kDigitFlag = 0x80000000;

// Sent to one widget.
inline constexpr uint32_t kFocusChange = 0x4030001;    // data: 0 lost, 1 gained
inline constexpr uint32_t kFullRedraw = 0x4030002;     // background, frame and content
inline constexpr uint32_t kContentRedraw = 0x4030003;  // content
inline constexpr uint32_t kWidgetDestroyed = 0x4030004;

inline constexpr uint32_t kGetValue = 0x4040001;    // pointer: KuiValue to fill
inline constexpr uint32_t kSetValue = 0x4040002;    // pointer: KuiValue to take
inline constexpr uint32_t kGetMinimum = 0x4040003;  // pointer: number to fill
inline constexpr uint32_t kSetMinimum = 0x4040004;  // data: the number
inline constexpr uint32_t kGetMaximum = 0x4040005;
inline constexpr uint32_t kSetMaximum = 0x4040006;
inline constexpr uint32_t kGetStyle = 0x4040007;  // pointer: TextStyle address to fill
inline constexpr uint32_t kSetStyle = 0x4040008;  // pointer: TextStyle to copy
inline constexpr uint32_t kGetHighlightStyle = 0x4040009;
inline constexpr uint32_t kSetHighlightStyle = 0x404000a;
inline constexpr uint32_t kAddChoice = 0x404000b;  // pointer: KuiValue to take
inline constexpr uint32_t kRunOnChange = 0x404000c;
inline constexpr uint32_t kRunOnUp = 0x404000d;
inline constexpr uint32_t kRunOnDown = 0x404000e;
inline constexpr uint32_t kRunOnLeft = 0x404000f;
inline constexpr uint32_t kRunOnRight = 0x4040010;
inline constexpr uint32_t kScrollLines = 0x4040011;    // data: signed line count
inline constexpr uint32_t kMoveSelection = 0x4040012;  // data: signed line count
inline constexpr uint32_t kGetSrc = 0x4040013;         // pointer: name to fill
inline constexpr uint32_t kSetSrc = 0x4040014;         // pointer: name to copy
inline constexpr uint32_t kGetHighlightSrc = 0x4040015;
inline constexpr uint32_t kSetHighlightSrc = 0x4040016;

// The pointer of type T that rides with the event, or null.
template <class T>
T* eventPointer(const Event& event) {
  T* const* found = std::get_if<T*>(&event.pointer);
  return found ? *found : nullptr;
}
