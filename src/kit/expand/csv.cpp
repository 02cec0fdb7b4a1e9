#include "kit/expand/csv.h"

#include <utility>

namespace {

class CsvReader {
 public:
  CsvReader(const std::string& f, const std::string& t) : file(std::make_shared<std::string>(f)), text(t) {
    if (text.starts_with("\xEF\xBB\xBF")) at = 3;
  }

  YamlNode table() {
    YamlNode all = node(YamlNode::Kind::list);
    const std::vector<YamlNode> names = row();
    for (size_t i = 0; i < names.size(); ++i)
      for (size_t k = 0; k < i; ++k)
        if (names[i].text == names[k].text) throw KitError(*file, 1, "two columns are called '" + names[i].text + "'");
    while (at < text.size()) {
      YamlNode one = node(YamlNode::Kind::map);
      std::vector<YamlNode> fields = row();
      if (fields.size() == 1 && fields[0].text.empty() && names.size() > 1) continue;  // an empty line
      if (fields.size() != names.size())
        throw KitError(*file, one.place.line,
                       "the row has " + std::to_string(fields.size()) + (fields.size() == 1 ? " field" : " fields") +
                           ", and the first one " + std::to_string(names.size()));
      for (size_t i = 0; i < fields.size(); ++i)
        one.map.push_back({names[i].text, names[i].place, std::move(fields[i])});
      all.list.push_back(std::move(one));
    }
    return all;
  }

 private:
  YamlNode node(YamlNode::Kind kind) const {
    YamlNode result;
    result.kind = kind;
    result.place = {file, line, int(at - lineStart) + 1, nullptr};
    result.textLine = line;
    return result;
  }

  std::vector<YamlNode> row() {
    std::vector<YamlNode> fields;
    do fields.push_back(field());
    while (take(','));
    if (!atLineEnd()) throw KitError(*file, line, "a quoted field goes on after its quotes");
    endLine();
    return fields;
  }

  YamlNode field() {
    YamlNode result = node(YamlNode::Kind::scalar);
    if (!take('"')) {
      while (!atLineEnd() && text[at] != ',') result.text += text[at++];
      return result;
    }
    result.style = YamlNode::Style::quoted;
    while (at < text.size()) {
      const char c = text[at++];
      if (c == '"' && !take('"')) return result;  // two of them are one of the text
      result.text += c;
      if (c == '\n') beginLine();
    }
    throw KitError(*file, result.place.line, "a quoted field has no end");
  }

  bool take(char c) {
    if (at == text.size() || text[at] != c) return false;
    ++at;
    return true;
  }

  bool atLineEnd() const { return at == text.size() || text[at] == '\n' || text[at] == '\r'; }

  void endLine() {
    take('\r');
    take('\n');
    beginLine();
  }

  void beginLine() {
    ++line;
    lineStart = at;
  }

  const std::shared_ptr<const std::string> file;
  const std::string& text;
  size_t at = 0, lineStart = 0;
  int line = 1;
};

}  // namespace

YamlNode parseCsv(const std::string& file, const std::string& text) { return CsvReader(file, text).table(); }
