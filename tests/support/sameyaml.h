// Whether two trees of YAML are the same, their order of keys included, wherever they stand and however they are
// written.
#pragma once

#include <algorithm>

#include "kit/yaml/readyaml.h"

inline bool isSameYaml(const YamlNode& a, const YamlNode& b) {
  const auto isSamePair = [](const YamlPair& x, const YamlPair& y) {
    return x.key == y.key && isSameYaml(x.value, y.value);
  };
  return a.kind == b.kind && a.tag == b.tag && a.text == b.text &&
         std::equal(a.list.begin(), a.list.end(), b.list.begin(), b.list.end(), isSameYaml) &&
         std::equal(a.map.begin(), a.map.end(), b.map.begin(), b.map.end(), isSamePair);
}
