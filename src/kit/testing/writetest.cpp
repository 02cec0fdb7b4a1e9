#include "kit/testing/writetest.h"

#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"

namespace {

YamlNode scalar(const std::string& text) {
  YamlNode node;
  node.kind = YamlNode::Kind::scalar;
  node.text = text;
  return node;
}

YamlNode stepNode(const char* key, const std::string& value) {
  YamlNode node;
  node.kind = YamlNode::Kind::map;
  node.map.push_back({key, {}, scalar(value)});
  return node;
}

}  // namespace

std::string testOf(const Recording& recording, const NewTest& test) {
  const YamlNode done = parseYaml("recording", recordingText(recording));
  YamlNode steps = *done.find("steps");
  steps.kind = YamlNode::Kind::list;
  if (!test.focus.empty()) steps.list.push_back(stepNode("focus", test.focus));
  if (!test.picture.empty()) steps.list.push_back(stepNode("screen", test.picture));
  YamlNode root;
  root.kind = YamlNode::Kind::map;
  if (!test.name.empty()) root.map.push_back({"name", {}, scalar(test.name)});
  root.map.push_back({"page", {}, scalar(test.page)});
  root.map.push_back({"steps", {}, std::move(steps)});
  return writeYaml(root);
}
