// A string, on one line or wrapped; with maxLength in its page one that digit keys append to.
//
// What surprises: keys and scripts write the value, but only keys write the echo that hides it, so the echo of a value
// that a script or the page gave is made of zero bytes; and an echo is aligned by the width of what it hides.
#pragma once

#include <string>
#include <vector>

#include "engine/widgets/textparts.h"

struct TextWidget : Widget {
  using Widget::Widget;
  int handleEvent(const Event* event) override;

  TextStylePair styles;
  bool multiline = false;
  bool editable = false;
  bool fromRight = false;       // scripts read the last `length` bytes of the buffer
  uint32_t alignment = 0;       // a widgetAlign number
  uint32_t length = 0;          // bytes
  uint32_t maxLength = 0;       // bytes of the buffer
  char echoChar = 0;            // shown in place of each entered byte; 0 shows the bytes
  const char* value = nullptr;  // without a zero at its end; null for no text

  // Buffers are as long as what has been written to them; beyond, they are zeros up to maxLength.
  std::string ownedValue;  // what `value` points to when that isn't the page
  std::string echoBuffer;
  std::string readBack;  // what a script has got that reads from the right

  bool hidesValue() const { return editable && echoChar; }
  const char* shownText() const { return hidesValue() ? echoBuffer.data() : value; }  // `length` bytes, or null
};

// The lines as they are drawn; none without a style or a text.
std::vector<std::string> textLines(const TextWidget& widget);

// Null on failure, a negative maxLength included.
WidgetPtr<> textCreate(WidgetOwner* owner, Widget* parent, PageObject record);
