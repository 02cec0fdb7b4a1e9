// Pages as trees of YAML nodes whose widgets know their names and labels, to compare them.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kit/yaml/yamlnode.h"

struct WidgetNode {
  const YamlNode* node = nullptr;
  const WidgetNode* parent = nullptr;
  std::string name, type;
  std::string label;    // its name, or its kind and number and where it lies
  std::string content;  // all of it
  std::vector<std::unique_ptr<WidgetNode>> children;
};

class PageOfWidgets {
 public:
  // A source without constants, templates and the like, or with `compiled` a page or source as compiled, with
  // instructions in the place of scripts. Throws KitError.
  PageOfWidgets(const std::string& path, bool compiled);

  const YamlNode tree;
  const std::filesystem::path folder;
  std::unique_ptr<WidgetNode> root;
  std::map<std::string, const WidgetNode*> named;  // null for a name that several have

 private:
  std::unique_ptr<WidgetNode> widgetOf(const YamlNode& node, const WidgetNode* parent, size_t number);
};
