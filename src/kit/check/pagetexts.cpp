#include "kit/check/pagetexts.h"

#include <algorithm>
#include <utility>

#include "engine/engine.h"
#include "engine/text/textmeasure.h"
#include "engine/widgets/linebreak.h"
#include "engine/widgets/number.h"
#include "engine/widgets/select.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"

namespace {

struct Size {
  int32_t width, height;  // pixels
};

Size sizeOf(const TextStyle& style, const std::string& text) {
  Size size;
  textMeasure(style, text.data(), uint32_t(text.size()), &size.width, &size.height, nullptr);
  return size;
}

Size wrappedSize(const TextStyle& style, const std::string& text, int32_t width) {
  const std::vector<TextLine> lines = breakLines(style, text, width);
  Size size{0, int32_t(lines.size()) * style.size};
  for (const TextLine& line : lines) size.width = std::max(size.width, line.width);
  return size;
}

Bounds aligned(const Bounds& box, uint32_t alignment, const Size& size) {
  return {alignedLeft(box, alignment, size.width), alignedTop(box, alignment, size.height), size.width, size.height};
}

class Collector {
 public:
  std::vector<PageText> collect(const CheckedPage& page, OpenedPage& opened) {
    const std::vector<Widget*> widgets = opened.widgetsOf(page);
    for (size_t i = 0; i < widgets.size(); ++i) {
      checked = &page.widgets[i];
      made = widgets[i];
      if (auto* text = dynamic_cast<TextWidget*>(made)) addText(*text);
      if (auto* number = dynamic_cast<NumberWidget*>(made)) addNumber(*number);
      if (auto* select = dynamic_cast<SelectWidget*>(made)) addSelect(*select);
      if (const auto* list = dynamic_cast<TextContainerWidget*>(made)) addLines(*list);
    }
    return std::move(texts);
  }

 private:
  void add(const std::string& attribute, const std::string& text, const TextStyle& style, const Bounds& drawn) {
    if (text.empty() || !style.font) return;
    texts.push_back({checked, made, checked->place(attribute), text, style, made->bounds, drawn});
  }

  static std::vector<TextStyle> stylesOf(const TextStylePair& pair) {
    std::vector<TextStyle> styles;
    for (const auto& style : {pair.plain, pair.highlighted})
      if (style) styles.push_back(*style);
    return styles;
  }

  // What is typed into it isn't known.
  void addText(const TextWidget& widget) {
    if (widget.hidesValue()) return;
    std::vector<std::string> values{checked->text("value")};
    const char* shown = widget.shownText();
    if (shown && values.front() != std::string(shown, widget.length)) values.emplace_back(shown, widget.length);
    for (const std::string& value : values)
      for (const TextStyle& style : stylesOf(widget.styles)) {
        const Size size = widget.multiline ? wrappedSize(style, value, widget.bounds.w) : sizeOf(style, value);
        const size_t before = texts.size();
        add("value", value, style, aligned(widget.bounds, widget.alignment, size));
        if (texts.size() > before) texts.back().multiline = widget.multiline;
      }
  }

  void addNumber(NumberWidget& widget) {
    for (const int32_t value : {widget.minimum, widget.maximum}) {
      const int32_t before = std::exchange(widget.value, value);
      const std::string figures = numberFigures(widget);
      widget.value = before;
      for (const TextStyle& style : stylesOf(widget.styles)) {
        const Size size = sizeOf(style, figures);
        add("", figures, style, {widget.bounds.x, widget.bounds.y, size.width, size.height});
      }
    }
  }

  void addSelect(SelectWidget& widget) {
    const bool isRow = widget.showAll && !widget.vertical;
    const RowSize row = isRow ? selectRowSize(&widget) : RowSize{0, 0};
    for (const SelectChoice& choice : widget.choices)
      for (const TextStyle& style : stylesOf(widget.styles)) {
        const Size size = isRow ? Size{row.width, row.height} : sizeOf(style, choice.text);
        add("choices", choice.text, style, aligned(widget.bounds, widget.alignment, size));
      }
  }

  // `y` of a line is its baseline.
  void addLines(const TextContainerWidget& widget) {
    const PageValue* lines = checked->find("children");
    for (size_t i = 0; i < widget.lines.size(); ++i) {
      const ContainerLine& line = widget.lines[i];
      if (!line.content) continue;
      std::vector<TextStyle> styles;
      for (const TextStyle* style : {line.style, widget.selectTextStyle})
        if (style) styles.push_back(*style);
      for (const TextStyle& style : styles) {
        const Size size = sizeOf(style, line.content);
        int32_t ascent = 0;
        textMetrics(style, &ascent, nullptr);
        const size_t before = texts.size();
        add("children", line.content, style,
            {widget.bounds.x + line.x, widget.bounds.y + line.y - ascent, size.width, size.height});
        if (texts.size() > before && lines && i < lines->table.size() && !lines->table[i].object.empty())
          texts.back().place = lines->table[i].object.front().places.object;
      }
    }
  }

  const CheckedWidget* checked = nullptr;
  Widget* made = nullptr;
  std::vector<PageText> texts;
};

}  // namespace

std::vector<PageText> pageTexts(const CheckedPage& page, OpenedPage& opened) {
  const EngineScope here(opened.engine());
  return Collector().collect(page, opened);
}
