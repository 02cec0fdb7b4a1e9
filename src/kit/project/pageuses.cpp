#include "kit/project/pageuses.h"

#include <algorithm>
#include <filesystem>

#include "kit/source/pageoutline.h"

namespace {

class UseFinder {
 public:
  UseFinder(const std::string& s, const std::string& f) : source(s), folder(f) {}

  std::vector<FileUse> run(const PageOutline& page) {
    for (const std::string& script : page.scripts) add(script, page.root.place, "scripts of the page");
    for (const OutlineStyle& style : page.styles)
      if (!style.font.empty()) add(style.font, style.place, "font of the text style '" + style.name + "'");
    addWidget(page.root);
    return std::move(uses);
  }

 private:
  void addWidget(const OutlineWidget& widget) {
    for (const OutlineAttribute& file : widget.files) add(file.value, widget.place, file.key + " of " + widget.label);
    for (const OutlineWidget& child : widget.children) addWidget(child);
  }

  void add(const std::string& name, const YamlPlace& place, const std::string& what) {
    std::string path = name;
    std::replace(path.begin(), path.end(), '\\', '/');
    path = (std::filesystem::path(folder) / path).lexically_normal().string();
    const std::string file = place.file ? *place.file : source;
    uses.push_back({path, name, {file, place.line, what}});
  }

  const std::string& source;
  const std::string& folder;
  std::vector<FileUse> uses;
};

}  // namespace

std::vector<FileUse> pageUses(const std::string& source, const std::string& folder, const BuiltPage& page) {
  return UseFinder(source, folder).run(outlinePage(source, page.bytes, page.places));
}
