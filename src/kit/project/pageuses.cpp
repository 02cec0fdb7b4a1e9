#include "kit/project/pageuses.h"

#include <algorithm>
#include <filesystem>

#include "gfx/foundation/hsascii.h"
#include "kit/source/pageoutline.h"

namespace fs = std::filesystem;

std::string pictureFile(const std::string& name) {
  const std::string extension = fs::path(name).extension().string();
  const bool isItself = extension.empty() || hsAsciiEqualIgnoringCase(extension.c_str(), ".gif") ||
                        hsAsciiEqualIgnoringCase(extension.c_str(), ".kpx");
  return isItself ? name : fs::path(name).replace_extension(".kpx").generic_string();
}

namespace {

class UseFinder {
 public:
  UseFinder(const std::string& s, const std::string& f) : source(s), folder(f) {}

  std::vector<FileUse> run(const PageOutline& page, const std::vector<LoadedPage>& loaded) {
    for (const std::string& script : page.scripts) add(script, page.root.place, "scripts of the page");
    for (const OutlineStyle& style : page.styles)
      if (!style.font.empty()) add(style.font, style.place, "font of the text style '" + style.name + "'");
    addWidget(page.root);
    for (const LoadedPage& each : loaded) {
      add(each.name, each.place, each.what.empty() ? "LoadPage" : "LoadPage in " + each.what);
      uses.back().isLoaded = true;
    }
    return std::move(uses);
  }

 private:
  void addWidget(const OutlineWidget& widget) {
    for (const OutlineAttribute& file : widget.files) {
      const bool isPicture = file.key != "colorTable" && widget.type != "frame";
      const std::string what = file.key + " of " + widget.label;
      add(file.value, widget.place, what, isPicture || file.key == "background");
    }
    for (const OutlineWidget& child : widget.children) addWidget(child);
  }

  void add(const std::string& name, const YamlPlace& place, const std::string& what, bool isPicture = false) {
    std::string path = isPicture ? pictureFile(name) : name;
    std::replace(path.begin(), path.end(), '\\', '/');
    path = (fs::path(folder) / path).lexically_normal().generic_string();
    uses.push_back({path, name, place.file ? messageAt(place, what) : KitMessage{source, place.line, what}});
  }

  const std::string& source;
  const std::string& folder;
  std::vector<FileUse> uses;
};

}  // namespace

std::vector<FileUse> pageUses(const std::string& source, const std::string& folder, const BuiltPage& page) {
  return UseFinder(source, folder).run(outlinePage(source, page.bytes, page.places), page.loadedPages);
}
