#include "kit/expand/styles.h"

#include <algorithm>
#include <string>
#include <utility>

#include "kit/expand/directions.h"
#include "kit/expand/mapedit.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

class StyleReader {
 public:
  StyleReader(std::vector<YamlNode>& s, std::vector<KitMessage>& e) : styles(s), errors(e), states(s.size()) {}

  void run() {
    for (size_t i = 0; i < styles.size(); ++i) {
      // Each takes from one that is finished, so a chain is followed to its end first, without recursion.
      std::vector<size_t> chain;
      for (size_t at = i; at < styles.size() && states[at] != State::finished; at = baseOf(at)) {
        if (states[at] == State::begun) {
          report(*findDirection(styles[at], "style"),
                 "text style '" + nameOf(styles[at]) + "' has itself as its style, directly or by way of others");
          break;
        }
        states[at] = State::begun;
        chain.push_back(at);
      }
      for (; !chain.empty(); chain.pop_back()) inherit(chain.back());
    }
  }

 private:
  enum class State : char { waiting, begun, finished };

  void report(const YamlNode& node, const std::string& text) {
    errors.push_back(messageAt(node.place, "style: " + text));
  }

  static std::string nameOf(const YamlNode& style) {
    const YamlNode* name = style.find("name");
    return name && name->isScalar() ? name->text : "default";
  }

  // The style that this one takes from; none if there is no such.
  size_t baseOf(size_t i) const {
    const YamlNode* base = findDirection(styles[i], "style");
    if (!base || !base->isScalar()) return styles.size();
    size_t at = 0;
    while (at < styles.size() && nameOf(styles[at]) != base->text) ++at;
    return at;
  }

  void inherit(size_t i) {
    states[i] = State::finished;
    const YamlNode* base = findDirection(styles[i], "style");
    if (!base) return;
    const size_t from = baseOf(i);
    if (from == styles.size()) reportUnknown(*base);
    YamlNode style = std::move(styles[i]);
    removeDirection(style, "style");
    if (from < styles.size() && from != i)
      for (const YamlPair& pair : styles[from].map)
        if (pair.key != "name" && pair.key != "style" && !style.find(pair.key)) style.map.push_back(pair);
    styles[i] = std::move(style);
  }

  void reportUnknown(const YamlNode& base) {
    if (!base.isScalar()) return report(base, "expecting the name of a text style, found " + shownNode(base));
    std::vector<std::string> names;
    for (const YamlNode& style : styles) names.push_back(nameOf(style));
    report(base, "there is no text style '" + base.text + "'" + suggestion(base.text, names));
  }

  std::vector<YamlNode>& styles;
  std::vector<KitMessage>& errors;
  std::vector<State> states;
};

}  // namespace

void inheritStyles(YamlNode& source, std::vector<KitMessage>& errors) {
  YamlNode* page = findValue(source, "page");
  YamlNode* styles = page ? findValue(*page, "textStyles") : nullptr;
  const auto takes = [](const YamlNode& style) { return findDirection(style, "style") != nullptr; };
  if (styles && std::any_of(styles->list.begin(), styles->list.end(), takes)) StyleReader(styles->list, errors).run();
}
