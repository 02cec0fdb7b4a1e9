#include "kit/expand/definitions.h"

#include <algorithm>

#include "kit/expand/expression.h"
#include "kit/expand/mapedit.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

[[noreturn]] void fail(const YamlPlace& place, const std::string& text) { throw SourceFault{place, text}; }

std::vector<std::string> definitionKeys() { return {"include", "constants", "templates"}; }

class DefinitionReader {
 public:
  DefinitionReader(Definitions& i, SourceFiles& f, std::vector<KitMessage>& e) : into(i), files(f), errors(e) {}

  void read(const YamlNode& top) {
    reading.push_back(*top.place.file);
    guarded([&] { refuseRepeatedKeys(top, definitionKeys()); });
    if (const YamlNode* names = top.find("include")) guarded([&] { includeAll(*names); });
    if (const YamlNode* all = top.find("constants")) guarded([&] { constants(*all); });
    if (const YamlNode* all = top.find("templates")) guarded([&] { templates(*all); });
    reading.pop_back();
  }

 private:
  template <class F>
  void guarded(F&& work) {
    try {
      work();
    } catch (const SourceFault& fault) {
      errors.push_back(messageAt(fault.at, fault.text));
    } catch (const KitError& e) {
      errors.insert(errors.end(), e.messages.begin(), e.messages.end());
    }
  }

  void includeAll(const YamlNode& names) {
    if (names.isScalar()) return include(names);
    if (!names.isList()) fail(names.place, "include: expecting a file or a list of files, found " + shownNode(names));
    for (const YamlNode& name : names.list) guarded([&] { include(name); });
  }

  void include(const YamlNode& name) {
    const std::string path = SourceFiles::pathOf(scalarText(name, "a file name"), name.place);
    if (hasExpression(name.text))
      fail(name.place, "include: files of constants and templates are named without $(...), which needs them");
    if (std::find(reading.begin(), reading.end(), path) != reading.end())
      fail(name.place, "include: " + path + " includes itself");
    if (reading.size() > kMaxUses) fail(name.place, "include: files are nested too deep");
    YamlNode top = files.read(name.text, name.place);
    if (!top.isMap()) fail(name.place, "include: " + path + " has neither constants nor templates");
    for (YamlPair& pair : top.map) {
      const std::vector<std::string> keys = definitionKeys();
      if (std::find(keys.begin(), keys.end(), pair.key) == keys.end())
        guarded([&] {
          fail(pair.place, pair.key +
                               ": is unknown; a file that a source includes has include, constants and templates" +
                               suggestion(pair.key, keys));
        });
      if (pair.key == "include") markUse(pair.value, {"include: " + name.text, name.place});
    }
    read(top);
  }

  // So that a circle is reported with all of its places.
  static void markUse(YamlNode& node, const YamlUse& use) {
    node.place.use = std::make_shared<YamlUse>(use);
    for (YamlNode& item : node.list) markUse(item, use);
  }

  void constants(const YamlNode& all) {
    if (!all.isMap()) fail(all.place, "constants: expecting a map of names and values, found " + shownNode(all));
    guarded([&] { refuseRepeatedKeys(all); });
    for (const YamlPair& pair : all.map)
      guarded([&] {
        checkName(pair, "a constant");
        into.constants[pair.key] = pair.value;
      });
  }

  void templates(const YamlNode& all) {
    if (!all.isMap()) fail(all.place, "templates: expecting a map of names and templates, found " + shownNode(all));
    guarded([&] { refuseRepeatedKeys(all); });
    for (const YamlPair& pair : all.map)
      guarded([&] {
        into.templates[pair.key].isBroken = true;
        if (!pair.value.isMap())
          fail(pair.place,
               "template '" + pair.key + "': expecting a map of attributes, found " + shownNode(pair.value));
        into.templates[pair.key] = templateOf(pair.value);
      });
  }

  Template templateOf(const YamlNode& source) {
    Template result;
    result.body = source;
    std::erase_if(result.body.map, [](const YamlPair& pair) { return pair.key == "parameters"; });
    const YamlNode* parameters = source.find("parameters");
    if (!parameters) return result;
    if (!parameters->isMap())
      fail(parameters->place, "parameters: expecting a map of names and defaults, found " + shownNode(*parameters));
    refuseRepeatedKeys(*parameters);
    for (const YamlPair& pair : parameters->map) checkName(pair, "a parameter");
    result.parameters = parameters->map;
    return result;
  }

  static void checkName(const YamlPair& pair, const char* what) {
    if (!isExpressionName(pair.key))
      fail(pair.place, "'" + pair.key + "': the name of " + what + " has letters, digits and _, and no digit first");
  }

  Definitions& into;
  SourceFiles& files;
  std::vector<KitMessage>& errors;
  std::vector<std::string> reading;
};

}  // namespace

std::vector<std::string> Definitions::templateNames() const {
  std::vector<std::string> names;
  for (const auto& [name, source] : templates) names.push_back(name);
  return names;
}

Definitions readDefinitions(const YamlNode& top, SourceFiles& files, std::vector<KitMessage>& errors) {
  Definitions result;
  DefinitionReader(result, files, errors).read(top);
  return result;
}
