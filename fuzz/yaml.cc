// Any text as YAML: what is read is written as a tree that is the same, and one value of it is changed and taken out.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "kit/errors.h"
#include "kit/yaml/edityaml.h"
#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"
#include "support/sameyaml.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

// Each edit is read again and compared by the editor itself.
void edit(const std::string& text, const YamlNode& root, uint8_t choice) {
  constexpr const char* kValues[] = {"7", "two words", "a: b", "", "two\nlines\n", " \"'", "#"};
  const YamlNode* inner = &root;
  for (int depth = choice % 5; depth > 0; --depth) {
    if (inner->isMap() && !inner->map.empty())
      inner = &inner->map[choice % inner->map.size()].value;
    else if (inner->isList() && !inner->list.empty())
      inner = &inner->list.back();
  }
  const YamlNode& map = *inner;
  if (!map.isMap() || map.map.empty()) return;
  const std::string key = choice % 7 ? map.map[choice % map.map.size()].key : "new";
  const std::string value = kValues[choice % std::size(kValues)];
  try {
    const std::string changed = withYamlValue("y", text, map.place, key, value);
    check(isSameYaml(parseYaml("y", withYamlValue("y", changed, map.place, key, value)), parseYaml("y", changed)));
  } catch (const KitError&) {  // it can't be changed alone
  }
  YamlPlace elsewhere = map.place;
  elsewhere.column += 1000;
  try {
    withYamlValue("y", text, elsewhere, key, value);
    check(false);
  } catch (const KitError&) {  // there is no map
  }
  try {
    withoutYamlKey("y", text, map.place, key);
  } catch (const KitError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  try {
    const YamlNode root = parseYaml("y", text);
    check(isSameYaml(parseYaml("y", writeYaml(root)), root));
    edit(text, root, size == 0 ? 0 : uint8_t(data[size - 1] + size));
  } catch (const KitError&) {
  }
  return 0;
}
