#include "kit/expand/expand.h"

#include <algorithm>
#include <utility>

#include "kit/expand/definitions.h"
#include "kit/expand/directions.h"
#include "kit/expand/expression.h"
#include "kit/expand/instantiate.h"
#include "kit/expand/layout.h"
#include "kit/expand/links.h"
#include "kit/expand/styles.h"
#include "kit/yaml/writeyaml.h"

namespace {

bool isDefinition(const YamlPair& pair) {
  return pair.key == "include" || pair.key == "constants" || pair.key == "templates";
}

bool isPlain(const YamlNode& node) {
  const auto pairIsPlain = [](const YamlPair& pair) {
    return !isDirection(pair, "include") && !isDirection(pair, "template") && !isDirection(pair, "repeat") &&
           isPlain(pair.value);
  };
  return !hasExpression(node.text) && std::all_of(node.list.begin(), node.list.end(), isPlain) &&
         std::all_of(node.map.begin(), node.map.end(), pairIsPlain);
}

ExpandedSource instantiated(YamlNode source, std::vector<KitMessage>& errors, const ReadFile& read) {
  ExpandedSource result;
  if (isPlain(source) && std::none_of(source.map.begin(), source.map.end(), isDefinition)) {
    result.plain = std::move(source);
    return result;
  }
  SourceFiles files(read);
  const Definitions definitions = readDefinitions(source, files, errors);
  std::erase_if(source.map, isDefinition);
  result.plain = instantiate(source, definitions, files, errors);
  result.files = files.paths();
  return result;
}

void escape(YamlNode& node) {
  if (hasExpression(node.text)) node.text = escapeExpressions(node.text);
  for (YamlNode& item : node.list) escape(item);
  for (YamlPair& pair : node.map) escape(pair.value);
}

}  // namespace

ExpandedSource expandSource(YamlNode source, std::vector<KitMessage>& errors, const ReadFile& read) {
  ExpandedSource result = instantiated(std::move(source), errors, read);
  inheritStyles(result.plain, errors);
  layOut(result.plain, errors);
  linkNeighbours(result.plain, errors);
  return result;
}

std::string expandedText(const YamlNode& plain) {
  YamlNode escaped = plain;
  escape(escaped);
  return writeYaml(escaped);
}
