// The names that an expression may use: constants, the parameters of a template, the entry and index of a repetition.
//
// A constant is evaluated when it is first asked for, so that constants may use each other in any order.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kit/yaml/yamlnode.h"

class Scope {
 public:
  Scope() = default;
  // A scope inside of another, which must outlive it.
  explicit Scope(const Scope& o) : outer(&o) {}

  void define(const std::string& name, YamlNode value) { values[name] = std::move(value); }

  // The innermost value of that name; null if there is none.
  const YamlNode* find(const std::string& name) const {
    const auto found = values.find(name);
    if (found != values.end()) return &found->second;
    if (outer) return outer->find(name);
    return unknown ? unknown(name) : nullptr;
  }

  std::vector<std::string> names() const {
    std::vector<std::string> all = outer ? outer->names() : more;
    for (const auto& [name, value] : values) all.push_back(name);
    return all;
  }

  // Of an outermost scope: asked for what has no value yet, and the names that it knows.
  std::function<const YamlNode*(const std::string& name)> unknown;
  std::vector<std::string> more;

 private:
  const Scope* outer = nullptr;
  std::map<std::string, YamlNode> values;
};
