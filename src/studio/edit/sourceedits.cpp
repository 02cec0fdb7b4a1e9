#include "studio/edit/sourceedits.h"

#include <algorithm>
#include <optional>

#include "kit/expand/expression.h"
#include "kit/files.h"
#include "kit/source/sourcevalue.h"
#include "kit/yaml/edityaml.h"
#include "kit/yaml/readyaml.h"

namespace {

// ---- a map's way from the top of its file, which stays the same while values change

struct YamlStep {
  std::optional<size_t> entry;  // of a list
  std::string key;              // or else of a map
};
using YamlPath = std::vector<YamlStep>;

bool findMap(const YamlNode& node, const YamlPlace& place, YamlPath& path) {
  if (node.isMap() && node.place.line == place.line && node.place.column == place.column) return true;
  const auto isIn = [&](const YamlNode& inner, const YamlStep& step) {
    path.push_back(step);
    if (findMap(inner, place, path)) return true;
    path.pop_back();
    return false;
  };
  for (size_t i = 0; i < node.list.size(); ++i)
    if (isIn(node.list[i], {i, ""})) return true;
  return std::any_of(node.map.begin(), node.map.end(), [&](const YamlPair& pair) {
    return isIn(pair.value, {std::nullopt, pair.key});
  });
}

const YamlNode* follow(const YamlNode& top, const YamlPath& path) {
  const YamlNode* node = &top;
  for (const YamlStep& step : path) {
    if (step.entry && *step.entry >= node->list.size()) return nullptr;
    node = step.entry ? &node->list[*step.entry] : node->find(step.key);
    if (!node) return nullptr;
  }
  return node->isMap() ? node : nullptr;
}

// ---- what an author may write

YamlNode scalarNode(const std::string& text) {
  YamlNode node;
  node.kind = YamlNode::Kind::scalar;
  node.text = text;
  return node;
}

[[noreturn]] void refuse(const std::string& name, const std::string& why) { throw KitError(name + ": " + why); }

// As the build would refuse it; what is computed from names, the build alone can tell.
void checkValue(const WidgetSource& widget, const std::string& name, const std::string& value) {
  if (hasExpression(value)) return;
  const AttributeForm form = attributeForm(widget.object, widget.type, name);
  const bool isPosition = name == "x" || name == "y" || name == "width" || name == "height";
  if (!form && !isPosition) refuse(name, "nothing reads it");
  const YamlNode node = scalarNode(value);
  try {
    if (isPosition) return void(positionValue(node));
    switch (*form) {
      case AttributeKind::integer: return void(integerValue(node));
      case AttributeKind::boolean: return void(booleanValue(node));
      case AttributeKind::color: return void(colorValue(node, widget.isIndexed));
      case AttributeKind::string:
        if (stringValue(node); isAttributeWord(widget.object, widget.type, name, value)) return;
        refuse(name, shownNode(node) + " is none of its words");
      case AttributeKind::script: return;
      default: refuse(name, "a list can't be changed here; edit the file");
    }
  } catch (const SourceFault& fault) {
    refuse(name, fault.text);
  }
}

bool isPlacedByLayout(const WidgetSource& widget, const YamlNode& map) {
  if (map.find("x") || map.find("y")) return false;
  const YamlPlace* place = findPlace(widget.places, "x");
  const YamlPlace& own = widget.places.object;
  return place && place->line == own.line && place->column == own.column && place->use == own.use;
}

void checkMap(const WidgetSource& widget, const YamlNode& map, const std::string& key) {
  const std::string now = map.textOf(key);
  if (hasExpression(now)) refuse(key, "the source computes it: " + now + "; edit the file");
  if ((key == "x" || key == "y") && isPlacedByLayout(widget, map)) refuse(key, "a layout places it; edit the file");
}

std::string nameOf(const WidgetSource& widget, const YamlNode& map) {
  const std::string name = map.textOf("name");
  if (!name.empty()) return "'" + name + "'";
  if (widget.object == ObjectKind::root) return "the page";
  return "a " + (widget.type.empty() ? "box" : widget.type);
}

std::optional<int32_t> givenNumber(const WidgetSource& widget, const std::string& key) {
  if (key == "x") return widget.given.x;
  if (key == "y") return widget.given.y;
  if (key == "width") return widget.given.w;
  if (key == "height") return widget.given.h;
  return std::nullopt;
}

// `built` is the map when the page was built: a number that hasn't changed since is the built one, whether it is
// computed, a template's, or none.
bool saysAlready(const WidgetSource& widget, const YamlNode& built, const YamlNode& map, const SourceValue& wanted) {
  const YamlNode *before = built.find(wanted.key), *now = map.find(wanted.key);
  const bool isAsBuilt = (!before && !now) || (before && now && before->text == now->text);
  const auto given = givenNumber(widget, wanted.key);
  if (given && isAsBuilt) return std::to_string(*given) == *wanted.text;
  return now && now->isScalar() && now->text == *wanted.text;
}

constexpr size_t kMostSteps = 200;  // each has two texts of a whole file
constexpr char kChangedElsewhere[] = "has been changed by another program";

bool isOnDisk(const std::string& file, const std::string& text) {
  const std::vector<uint8_t> bytes = readFile(file);
  return std::equal(bytes.begin(), bytes.end(), text.begin(), text.end(),
                    [](uint8_t a, char b) { return char(a) == b; });
}

void checkDisk(const std::string& file, const std::string& text) {
  if (!isOnDisk(file, text)) throw KitError(file, kChangedElsewhere);
}

}  // namespace

// ---- files

bool SourceEdits::isOurs(const std::string& file, const std::string& text) const {
  return std::any_of(steps.begin(), steps.end(), [&](const Step& step) {
    return step.file == file && (step.before == text || step.after == text);
  });
}

// As it is to be edited, or a KitError.
SourceEdits::File SourceEdits::fileOf(const WidgetSource& widget) const {
  const std::string& name = *widget.places.object.file;
  const auto known = files.find(name);
  File file = known != files.end() ? known->second : File{*widget.text, *widget.text, *widget.text};
  const std::string& built = *widget.text;
  if (built != file.built && built != file.saved && built != file.text && !isOurs(name, built)) {
    if (file.text != file.saved)
      throw KitError(name, std::string(kChangedElsewhere) + "; what isn't saved here has to be reverted");
    file = {built, built, built};
  }
  file.built = built;
  checkDisk(name, file.saved);
  return file;
}

void SourceEdits::forget(const std::string& file) {
  const auto isOf = [&](const Step& step) { return step.file == file; };
  next -= size_t(std::count_if(steps.begin(), steps.begin() + long(next), isOf));
  std::erase_if(steps, isOf);
}

// ---- edits

void SourceEdits::setAttribute(const WidgetSource& widget, const std::string& name, const std::string& value) {
  change(widget, {{name, value}}, name, 0);
}

void SourceEdits::removeAttribute(const WidgetSource& widget, const std::string& name) {
  change(widget, {{name, std::nullopt}}, name, 0);
}

void SourceEdits::setBounds(const WidgetSource& widget, const Bounds& place, uint32_t drag) {
  const auto cut = [](int32_t v) { return std::to_string(std::clamp(v, 0, 65535)); };
  const bool isResized = place.w != widget.given.w || place.h != widget.given.h;
  change(widget, {{"x", cut(place.x)}, {"y", cut(place.y)}, {"width", cut(place.w)}, {"height", cut(place.h)}},
         isResized ? "size" : "place", drag);
}

void SourceEdits::change(const WidgetSource& widget, const std::vector<SourceValue>& values, const std::string& name,
                         uint32_t drag) {
  const std::string& fileName = *widget.places.object.file;
  if (fileName.ends_with(".csv")) throw KitError(fileName, "is a table of data; edit the file");
  File file = fileOf(widget);
  const YamlNode builtTop = parseYaml(fileName, file.built);
  YamlPath path;
  if (!findMap(builtTop, widget.places.object, path))
    throw KitError(fileName, widget.places.object.line, "there is no widget here any more");
  const YamlNode& built = *follow(builtTop, path);
  const std::string before = file.text;
  std::string label;
  for (const SourceValue& value : values) {
    if (value.text) checkValue(widget, value.key, *value.text);
    const YamlNode top = parseYaml(fileName, file.text);
    const YamlNode* map = follow(top, path);
    if (!map) throw KitError(fileName, "there is no widget any more where this one was");
    label = nameOf(widget, *map);
    if (!value.text) {
      if (!map->find(value.key)) refuse(value.key, "it isn't set at the widget itself");
      file.text = withoutYamlKey(fileName, file.text, map->place, value.key);
      continue;
    }
    if (saysAlready(widget, built, *map, value)) continue;
    checkMap(widget, *map, value.key);
    file.text = withYamlValue(fileName, file.text, map->place, value.key, *value.text);
  }
  if (const auto known = files.find(fileName); known != files.end() && known->second.saved != file.saved)
    forget(fileName);
  files[fileName] = file;
  if (file.text != before) addStep({name + " of " + label, fileName, before, file.text, drag});
}

void SourceEdits::addStep(Step step) {
  steps.resize(next);
  if (next > 0 && step.drag != 0 && steps.back().drag == step.drag && steps.back().after == step.before) {
    step.before = steps.back().before;
    steps.pop_back();
  }
  if (step.before != step.after) steps.push_back(std::move(step));
  if (steps.size() > kMostSteps) steps.erase(steps.begin());
  next = steps.size();
}

void SourceEdits::undo() {
  if (next == 0) return;
  const Step& step = steps[next - 1];
  File& file = files.at(step.file);
  checkDisk(step.file, file.saved);
  file.text = step.before;
  --next;
}

void SourceEdits::redo() {
  if (next == steps.size()) return;
  const Step& step = steps[next];
  File& file = files.at(step.file);
  checkDisk(step.file, file.saved);
  file.text = step.after;
  ++next;
}

// ---- the disk

std::vector<std::string> SourceEdits::unsavedFiles() const {
  std::vector<std::string> names;
  for (const auto& [name, file] : files)
    if (file.text != file.saved) names.push_back(name);
  return names;
}

const std::string* SourceEdits::text(const std::string& file) const {
  const auto found = files.find(file);
  return found == files.end() ? nullptr : &found->second.text;
}

const std::string* SourceEdits::unsavedText(const std::string& file) const {
  const auto found = files.find(file);
  return found == files.end() || found->second.text == found->second.saved ? nullptr : &found->second.text;
}

void SourceEdits::save() {
  const std::vector<std::string> names = unsavedFiles();
  for (const std::string& name : names) checkDisk(name, files.at(name).saved);
  OutputFiles outputs;
  for (const std::string& name : names) {
    const std::string& text = files.at(name).text;
    outputs.add(name, text.data(), text.size());
  }
  outputs.finish();
  for (const std::string& name : names) files.at(name).saved = files.at(name).text;
}

void SourceEdits::revert() {
  for (const std::string& name : unsavedFiles()) {
    forget(name);
    files.erase(name);
  }
}

void SourceEdits::lookAtDisk() {
  std::vector<std::string> changed;
  for (const auto& [name, file] : files) try {
      if (file.text == file.saved && !isOnDisk(name, file.saved)) changed.push_back(name);
    } catch (const KitError&) {  // gone, perhaps for a moment
    }
  for (const std::string& name : changed) {
    forget(name);
    files.erase(name);
  }
}
