#include "kit/testing/mapreader.h"

#include <algorithm>
#include <set>

#include "host/keytable.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

void MapReader::readMap(const YamlNode& map, const std::string& what, const KeyReaders& readers) {
  if (!map.isMap()) return fail(map.place, what + " is a map, not " + shownNode(map));
  std::set<std::string> seen;
  std::vector<std::string> words;
  for (const auto& [word, reader] : readers) words.push_back(word);
  for (const YamlPair& pair : map.map) {
    const auto reader =
        std::find_if(readers.begin(), readers.end(), [&](const auto& each) { return each.first == pair.key; });
    if (reader == readers.end()) {
      const std::string meant = suggestion(pair.key, words);
      fail(pair.place,
           what + " has no '" + pair.key + "'" + (meant.empty() ? "; it has " + listOfWords(words) : meant));
    } else if (!seen.insert(pair.key).second) {
      fail(pair.place, "'" + pair.key + "' is given twice");
    } else {
      reader->second(pair);
    }
  }
}

std::string MapReader::text(const YamlNode& node, const char* what) {
  try {
    return scalarText(node, what);
  } catch (const SourceFault& fault) {
    fail(fault.at, fault.text);
    return {};
  }
}

std::vector<std::string> MapReader::texts(const YamlNode& node, const char* what) {
  if (!node.isList()) return {text(node, what)};
  std::vector<std::string> all;
  for (const YamlNode& item : node.list) all.push_back(text(item, what));
  return all;
}

std::string MapReader::path(const YamlNode& node) {
  const std::string name = text(node, "the name of a file");
  return name.empty() ? name : (folder / name).lexically_normal().generic_string();
}

int64_t MapReader::number(const YamlNode& node, int64_t least, int64_t most) {
  const std::string written = node.isScalar() ? node.text : "";
  const auto n = parseInteger(written);
  if (n && *n >= least && *n <= most) return *n;
  fail(node.place, "expecting a number from " + std::to_string(least) + " to " + std::to_string(most) + ", found " +
                       shownNode(node));
  return least;
}

bool MapReader::yes(const YamlNode& node) {
  if (node.isScalar() && (node.text == "yes" || node.text == "true")) return true;
  if (!node.isScalar() || (node.text != "no" && node.text != "false"))
    fail(node.place, "expecting yes or no, found " + shownNode(node));
  return false;
}

Bounds MapReader::bounds(const YamlNode& node) {
  if (!node.isList() || node.list.size() != 4) {
    fail(node.place, "an area is a list [x, y, width, height]");
    return {};
  }
  int32_t n[4];
  for (size_t i = 0; i < 4; ++i) n[i] = int32_t(number(node.list[i], i < 2 ? 0 : 1, 65535));
  return {n[0], n[1], n[2], n[3]};
}

std::string MapReader::key(const YamlNode& node) {
  std::string name = text(node, "a key");
  if (!keyMessageNamed(name)) fail(node.place, "there is no key '" + name + "'" + suggestion(name, keyNames()));
  return name;
}
