#include "studio/inspector/unseen.h"

#include <algorithm>

#include "kit/suggest.h"
#include "studio/inspector/widgettree.h"

namespace {

constexpr size_t kMostNamed = 5;  // of those that cover it

std::string refused(ImageRefusal refusal) {
  switch (refusal) {
    case ImageRefusal::none: return "";
    case ImageRefusal::missing: return "there is no such file";
    case ImageRefusal::badHeader: return "it is no picture of the player's";
    case ImageRefusal::badFormat: return "the player doesn't know its format";
    case ImageRefusal::badColorTable: return "its colour table can't be used";
    case ImageRefusal::tooBig: return "it doesn't fit into the image cache";
    case ImageRefusal::cutShort: return "the file ends too early";
    case ImageRefusal::badData: return "its data is damaged";
  }
  return "";
}

class Sentences {
 public:
  Sentences(Engine& e, const WidgetView& w) : engine(e), widget(w) {}

  UnseenSentence say(const UnseenReason& reason) {
    if (reason.why == Unseen::covered) return covered(reason);
    return {plain(reason), {}};
  }

 private:
  bool isKind(WidgetKind kind) const { return widget.kind == kind; }

  std::string plain(const UnseenReason& reason) {
    const std::string what = "'" + reason.what + "'";
    switch (reason.why) {
      case Unseen::notDrawn: return "not drawn so far";
      case Unseen::contentHidden: return hidden();
      case Unseen::zeroSize: return "it has no " + missingSize();
      case Unseen::outsideScreen: return "outside the screen";
      case Unseen::nothingToShow: return nothing();
      case Unseen::emptyText: return "its text is empty";
      case Unseen::noStyle: return reason.what.empty() ? noStyle() : "the page has no text style " + what;
      case Unseen::fontMissing:
        return reason.what.empty() ? "its text style names no font" : "font " + what + " is missing";
      case Unseen::fontUnusable: return "font " + what + " can't be used";
      case Unseen::pictureRefused: return "picture " + what + " refused: " + refused(reason.refusal);
      case Unseen::transparentColor: return "its colour is transparent";
      case Unseen::sameColor: return "it has the colour of what it lies on";
      case Unseen::covered: break;
    }
    return "";
  }

  std::string hidden() {
    const auto attributes = inspectAttributes(engine, widget.id);
    const auto find = [&](std::string_view name) {
      return std::find_if(attributes.begin(), attributes.end(), [&](const auto& a) { return a.name == name; });
    };
    const auto attribute = find("hidden"), timeout = find("timeout");
    if (attribute == attributes.end() || attribute->origin != ValueOrigin::changed) return "hidden by the page";
    return timeout->origin == ValueOrigin::page ? "hidden by its timeout or a script" : "hidden by a script";
  }

  std::string missingSize() const {
    if (widget.bounds.w >= 1) return "height";
    return widget.bounds.h >= 1 ? "width" : "size";
  }

  std::string nothing() const {
    switch (widget.kind) {
      case WidgetKind::image:
        return widget.highlighted ? "it has no picture for when it has the focus" : "it has no picture";
      case WidgetKind::select: return "it has no choices";
      case WidgetKind::textContainer: return "it has no lines";
      default: return "it has neither a colour nor a picture";
    }
  }

  std::string noStyle() const {
    const bool wantsOther = widget.highlighted && (isKind(WidgetKind::number) || isKind(WidgetKind::select));
    return wantsOther ? "it has no text style for when it has the focus" : "it has no text style";
  }

  // The topmost first.
  UnseenSentence covered(const UnseenReason& reason) {
    const auto labels = widgetLabels(engine);
    std::vector<std::pair<uint64_t, WidgetId>> order;
    for (const WidgetView& other : inspectWidgets(engine))
      if (std::find(reason.by.begin(), reason.by.end(), other.id) != reason.by.end())
        order.push_back({other.drawnAs, other.id});
    std::sort(order.rbegin(), order.rend());
    UnseenSentence sentence;
    std::vector<std::string> names;
    for (const auto& [drawnAs, id] : order) {
      sentence.by.push_back({id, labels.at(id)});
      names.push_back("'" + labels.at(id) + "'");
    }
    if (names.size() > kMostNamed) {
      const size_t more = names.size() - kMostNamed;
      names.resize(kMostNamed);
      names.push_back(std::to_string(more) + " more");
      sentence.by.resize(kMostNamed);
    }
    sentence.text = "covered by " + listOfWords(names, "and");
    return sentence;
  }

  Engine& engine;
  const WidgetView& widget;
};

}  // namespace

std::vector<UnseenSentence> unseenSentences(Engine& engine, WidgetId id) {
  std::vector<UnseenSentence> sentences;
  const auto widget = inspectWidget(engine, id);
  if (!widget) return sentences;
  for (const UnseenReason& reason : whyNotSeen(engine, id)) sentences.push_back(Sentences(engine, *widget).say(reason));
  return sentences;
}
