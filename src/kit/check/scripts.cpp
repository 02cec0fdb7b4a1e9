// Scripts that name what isn't there, or that the language takes otherwise than they are written.
#include <algorithm>
#include <map>
#include <set>

#include "kit/check/checks.h"
#include "kit/check/pagecode.h"
#include "kit/suggest.h"

namespace {

constexpr uint32_t kCodeSize = 4096, kLiteralCount = 256;  // of one statement
constexpr uint32_t kNearlyFull = 90;                       // percent

bool isOneOf(const std::string& name, std::initializer_list<const char*> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

class Scripts {
 public:
  Scripts(const CheckedPage& p, OpenedPage& o, const PageCode& c, const Find& f)
      : page(p), opened(o), code(c), find(f) {
    for (const auto& function : code.functions()) findSet(function->code->uses);
    code.eachUse([&](const PageFunction&, const BobCodeUse& use) {
      if (use.kind == BobCodeUse::setMember) (isPlayers(use.object) ? setOnWidgets : set).insert(use.name);
      if (use.kind == BobCodeUse::readMember || use.kind == BobCodeUse::send) read.insert(use.name);
      if (use.kind == BobCodeUse::call && isOneOf(use.name, {"Eval", "Load", "LoadObjectFile"})) runsOthers = true;
    });
  }

  void check() {
    const bool isOpen = !opened.widgetsOf(page).empty();
    code.eachUse([&](const PageFunction& function, const BobCodeUse& use) {
      if (isOpen && use.kind == BobCodeUse::readGlobal && mayCheckGlobals()) checkGlobal(function, use);
      if (isOpen &&
          (use.kind == BobCodeUse::readMember || use.kind == BobCodeUse::send || use.kind == BobCodeUse::setMember))
        checkMember(function, use);
      if (use.kind == BobCodeUse::setMember && use.name == "aliasCount")
        say("alias-count", function, use.offset, "a text style takes an aliasCount for its bgColor");
    });
    for (const auto& function : code.functions()) checkForm(*function);
    checkOpening();
  }

 private:
  void say(const char* check, const PageFunction& function, uint32_t offset, const std::string& text) const {
    code.say(find, check, function, offset, text);
  }

  // ---- names

  // A step such as count++ sets nothing that isn't there.
  void findSet(const std::vector<BobCodeUse>& uses) {
    for (size_t i = 0; i < uses.size(); ++i) {
      const bool isStep = i > 0 && uses[i - 1].kind == BobCodeUse::readGlobal && uses[i - 1].name == uses[i].name;
      if (uses[i].kind == BobCodeUse::setGlobal && !isStep) set.insert(uses[i].name);
    }
  }

  static bool isPlayers(const BobKnownValue& object) {
    return object.kind == BobKnownValue::path && object.name.starts_with("widgets.");
  }

  // A page in a frame sees the variables of the page around.
  bool mayCheckGlobals() const { return page.fillsScreen() && code.isComplete() && !runsOthers; }

  void checkGlobal(const PageFunction& function, const BobCodeUse& use) {
    if (use.name.empty() || set.contains(use.name) || opened.resolves(use.name)) return;
    const auto [meant, isNew] = unset.try_emplace(use.name);
    if (isNew) meant->second = suggestion(use.name, {set.begin(), set.end()});
    say("unset-global", function, use.offset,
        "nothing sets '" + use.name + "', and the script ends there with \"Unbound variable\"" + meant->second);
  }

  // What the player has made: widgets, styles and frames, a name deep or two.
  void checkMember(const PageFunction& function, const BobCodeUse& use) const {
    if (use.object.kind != BobKnownValue::path || use.name.empty()) return;
    const std::string& object = use.object.name;
    const bool isTable = isOneOf(object, {"widgets", "textStyles"});
    if (!isTable && !isPlayers(use.object) && !isOneOf(object, {"frame", "topFrame"})) return;
    if (std::count(object.begin(), object.end(), '.') > 1 || !opened.resolves(object)) return;
    if (set.contains(use.name) || opened.resolves(object + "." + use.name)) return;
    if (isTable && use.kind != BobCodeUse::setMember)
      say("no-such-name", function, use.offset,
          "there is no " + std::string(object == "widgets" ? "widget" : "text style") + " '" + use.name +
              "', and the script ends there with \"No property\"" + suggestion(use.name, namesIn(object)));
    if (isTable) return;
    if (use.kind == BobCodeUse::setMember && !read.contains(use.name))
      say("unknown-member", function, use.offset,
          "the player keeps '" + use.name + "' with " + object + ", and nothing changes that can be seen" +
              meant(use.name));
    if (use.kind != BobCodeUse::setMember && !setOnWidgets.contains(use.name))
      say("unknown-member", function, use.offset,
          object + " has no '" + use.name + "', and the script ends there with \"" +
              (use.kind == BobCodeUse::send ? "No method for selector" : "No property") + "\"" + meant(use.name));
  }

  std::vector<std::string> namesIn(const std::string& table) const {
    std::vector<std::string> names;
    for (const CheckedWidget& widget : page.widgets)
      if (table == "widgets" && !widget.name.empty()) names.push_back(widget.name);
    return names;
  }

  static std::string meant(const std::string& name) {
    return suggestion(
        name,
        {"SetFocus",    "AddElement",   "Show",         "Hide",   "ShowBackground", "HideBackground", "HandleEvent",
         "OnEvent",     "ObserveEvent", "Push",         "Remove", "LoadPage",       "UnloadPage",     "Focus",
         "value",       "minValue",     "maxValue",     "style",  "highlightStyle", "bgColor",        "background",
         "highlighted", "src",          "highlightSrc", "width",  "height"});
  }

  // ---- form

  void checkForm(const PageFunction& function) const {
    const BobCodeUses& uses = *function.code;
    for (const uint32_t at : uses.throws)
      say("no-throw", function, at, "nothing is thrown; the script goes on with the next statement");
    if (uses.unevenAt)
      say("continue-in-switch", function, *uses.unevenAt,
          "a continue inside a switch doesn't leave the block with local variables around it, and what follows fails "
          "with \"Bad opcode\"");
    if (function.around) return;
    const auto isNearlyFull = [](uint32_t used, uint32_t most) { return used * 100 > most * kNearlyFull; };
    if (isNearlyFull(uses.bytesToCompile, kCodeSize) || isNearlyFull(uses.literalsToCompile, kLiteralCount))
      say("statement-size", function, 0,
          "the statement takes " + std::to_string(uses.bytesToCompile) + " of 4,096 bytes and " +
              std::to_string(uses.literalsToCompile) + " of 256 literals, and beyond that it doesn't compile");
  }

  // ---- what happened as the page opened

  void checkOpening() const {
    if (!page.fillsScreen()) return;
    for (const ScriptFailure& failure : opened.scriptFailures()) {
      constexpr std::string_view kUnbound = "Unbound variable - ";
      if (failure.text.starts_with(kUnbound) && unset.contains(failure.text.substr(kUnbound.size()))) continue;
      YamlPlace place = page.root().place(page.root().has("onLoad") ? "onLoad" : "scripts");
      if (!failure.file.empty()) place = {std::make_shared<const std::string>(failure.file), failure.line, 1, nullptr};
      find("script-fails", place,
           failure.text.empty() ? "as the page opens, a script goes on and on, and the player does nothing else"
                                : "as the page opens, a script ends with \"" + failure.text + "\"");
    }
  }

  const CheckedPage& page;
  OpenedPage& opened;
  const PageCode& code;
  const Find& find;
  std::set<std::string> set, setOnWidgets, read;  // names of globals and members
  std::map<std::string, std::string> unset;       // those that nothing sets, and what to suggest for them
  bool runsOthers = false;                        // code that nothing is known of
};

}  // namespace

void checkScripts(const CheckedPage& page, OpenedPage& opened, const Find& find) {
  const PageCode code(page, opened);
  Scripts(page, opened, code, find).check();
  checkHandlers(page, code, find);
}
