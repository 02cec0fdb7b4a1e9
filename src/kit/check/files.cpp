// The files that a page names: whether the player finds them, whether it can use them, and what they cost.
#include <algorithm>
#include <map>

#include "engine/engine.h"
#include "engine/images/imageload.h"
#include "gfx/foundation/hsascii.h"
#include "gfx/text/hsgscalercontextt2k.h"
#include "kit/check/checks.h"
#include "kit/project/pageuses.h"
#include "kit/source/schema.h"

namespace {

constexpr uint64_t kMostPixels = 500'000;  // of the pictures of one page

bool isEqual(const std::string& a, const std::string& b) { return hsAsciiEqualIgnoringCase(a.c_str(), b.c_str()); }

std::string tableOf(const CheckedPage& page) { return page.root().text("colorTable"); }

class Files {
 public:
  Files(const CheckedPage& p, OpenedPage& o, const Find& f) : page(p), opened(o), find(f) {}

  void check() {
    const EngineScope here(opened.engine());
    for (const CheckedWidget& widget : page.widgets)
      for (const PageEntry& entry : widget.node->attributes) checkAttribute(widget, entry);
    checkPageTable();
    for (const CheckedStyle& style : page.styles) checkFont(style);
    checkScripts();
    for (const LoadedPage& loaded : page.tree.loadedPages)
      isThere(loaded.name, loaded.place, "LoadPage", "the player empties the frame");
    sayMemory();
  }

 private:
  bool isEightBit() const { return page.tree.flags & kPageIs8Bit; }

  // A smaller one lies in a frame, where its table doesn't count.
  void checkPageTable() {
    if (isEightBit() && page.fillsScreen() && tableOf(page).empty())
      find("no-table", page.root().place(),
           "an 8-bit page without a colorTable: the player shows it black all over until a picture brings a table");
  }

  // Says what is wrong with the name; `without` is what the player does if there is no such file.
  bool isThere(const std::string& name, const YamlPlace& place, const std::string& what, const std::string& without) {
    if (name.empty()) return false;
    const FileLook look = opened.look(name);
    if (look.found == FileLook::nowhere)
      find("missing-file", place, what + ": there is no file '" + name + "'; " + without);
    if (look.found == FileLook::ignoringCase)
      find("file-case", place,
           what + ": the file is called '" + look.name + "', and the player finds it as '" + name +
               "' only by comparing all names in the folder without regard to case");
    return look.found != FileLook::nowhere;
  }

  void checkAttribute(const CheckedWidget& widget, const PageEntry& entry) {
    const ObjectKind kind = &widget == &page.root() ? ObjectKind::root : ObjectKind::widget;
    if (entry.value.tag != PageTag::string || namedBy(kind, widget.type, entry.name) != NamedThing::file) return;
    const std::string what = entry.name + " of " + widget.label;
    const std::string& name = entry.value.bytes;
    const YamlPlace place = widget.place(entry.name);
    if (entry.name == "colorTable") {
      isThere(name, place, what, "the player doesn't load the page");
    } else if (widget.type == "frame" && entry.name == "src") {
      isThere(name, place, what, "the player leaves the frame empty");
    } else {
      checkPicture(name, place, what);
    }
  }

  // ---- pictures

  void checkPicture(const std::string& name, const YamlPlace& place, const std::string& what) {
    const std::string file = pictureFile(name);
    if (!isThere(file, place, what, "the player draws nothing there")) return;
    if (file != name)
      find("picture-ending", place,
           what + ": the player reads '" + file + "' for '" + name +
               "', keeps it under that name, and so reads it anew at each draw; name it '" + file + "'");
    const CachedImage* image = imageGet(file.c_str());
    if (!image) return sayRefusal(file, place, what);
    pixels.emplace(lower(file), uint64_t(image->width) * image->height);
    const Clut* clut = currentImages().clut(*image);
    isEightBit() ? checkIndices(clut, place, what) : checkColors(clut, place, what);
  }

  static std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), hsAsciiLower);
    return text;
  }

  void sayRefusal(const std::string& file, const YamlPlace& place, const std::string& what) {
    switch (currentImages().refusalOf(file.c_str())) {
      case ImageRefusal::none:
      case ImageRefusal::missing: return;  // a name in another case, of what has not been built
      case ImageRefusal::tooBig:
        return find("picture-size", place,
                    what + ": '" + file + "' is larger than all of the player's picture memory; " +
                        "it is never drawn, and all other pictures are thrown out for it");
      case ImageRefusal::badColorTable:
        return find("unreadable-file", place,
                    what + ": the colour table of '" + file + "' can't be read; the picture is not drawn");
      default:
        return find("unreadable-file", place, what + ": the player can't read '" + file + "' and draws nothing for it");
    }
  }

  void checkColors(const Clut* clut, const YamlPlace& place, const std::string& what) {
    if (!clut)
      find("no-table", place,
           what + ": the picture names no colour table, and on a 16-bit page the player draws nothing for it");
  }

  void checkIndices(const Clut* clut, const YamlPlace& place, const std::string& what) {
    if (!clut || (!clut->name.empty() && isEqual(clut->name, tableOf(page)))) return;
    const std::string its = clut->name.empty() ? "its own colour table" : "the colour table '" + clut->name + "'";
    find("other-table", place,
         what + ": the picture brings " + its +
             ", which becomes the screen's; all that is drawn from then on has other colours");
  }

  void sayMemory() {
    uint64_t all = 0;
    for (const auto& [name, count] : pixels) all += count;
    if (all > kMostPixels)
      find("picture-memory", page.root().place(),
           "the page's pictures have " + std::to_string(all) + " pixels, more than the " + std::to_string(kMostPixels) +
               " that the player can keep; it reads files again at each repaint");
  }

  // ---- fonts and scripts

  void checkFont(const CheckedStyle& style) {
    const std::string what = "font of " + style.name;
    if (!isThere(style.font, style.place("font"), what, "the player draws no text in this style")) return;
    const FontEntry* font = fontLoad(style.font.c_str());
    if (font && !hsFontOpens(font->scalerFont))
      find("unreadable-file", style.place("font"),
           what + ": '" + style.font + "' holds no font for the player, and it draws no text in this style");
  }

  void checkScripts() {
    const PageValue* scripts = page.root().find("scripts");
    if (!scripts) return;
    for (const PageValue& name : scripts->table)
      isThere(name.bytes, page.root().place("scripts"), "scripts of page", "the player goes on without it");
  }

  const CheckedPage& page;
  OpenedPage& opened;
  const Find& find;
  std::map<std::string, uint64_t> pixels;  // of pictures, by their names in lower case
};

}  // namespace

void checkFiles(const CheckedPage& page, OpenedPage& opened, const Find& find) { Files(page, opened, find).check(); }
