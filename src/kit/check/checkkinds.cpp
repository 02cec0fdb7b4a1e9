#include <algorithm>
#include <iterator>

#include "kit/check/finding.h"

namespace {

// In the order of the guide.
constexpr CheckKind kKinds[] = {
    {"no-such-name", "a link, a `master`, a `start`, a style or a name in a script that nothing on the page has"},
    {"name-twice", "two widgets or two styles of one name, of which the player finds one"},
    {"unread-attribute", "an attribute that nothing reads, most likely misspelt"},
    {"never-shown", "what the player reads and never draws"},
    {"late-master", "a `master` that the player makes after its slave, so that they don't share the highlight"},
    {"unreachable", "a widget that answers the focus, and that no direction key leads to from `start`"},
    {"focus-trap", "a widget that the focus reaches and that no direction key leaves"},
    {"slider-direction", "a slider that the player draws across its long side"},
    {"vanishes", "a number, a select or a picture that disappears with the focus"},
    {"two-sizes", "a select with `showAll` whose two styles differ in size"},
    {"shown-anyway", "hidden content that shows because its widget has a background picture"},
    {"frame-trace", "a highlight frame that stays on the screen, or takes something with it, when the focus goes"},
    {"row-not-erased",
     "a select with `showAll`, in a row, whose background or soft text needs what the player doesn't paint"},
    {"stuck-selection", "a text container with a selection and no style for it"},
    {"echoed-value", "a text with an `echoChar` that doesn't begin empty"},
    {"empty-bar", "a slider whose `min` equals its `max`"},
    {"bar-color", "a slider on a 16-bit page that leaves a colour to the player"},
    {"outside-screen", "a widget that begins or ends outside the screen"},
    {"missing-file", "a picture, colour table, font, script or page that isn't there, and that nothing makes"},
    {"file-case", "a file that the player finds only because it ignores upper and lower case"},
    {"unreadable-file", "a picture or a font that the player can't read"},
    {"picture-ending", "a picture that is named by another ending than `.kpx` or `.gif`, and so read at each draw"},
    {"picture-size", "a picture that doesn't fit the player's picture memory even alone"},
    {"picture-memory", "a page whose pictures have more than 500,000 pixels altogether"},
    {"other-table", "a picture that changes the colours of an 8-bit page"},
    {"no-table", "an 8-bit page, or a picture of a 16-bit page, without a colour table"},
    {"no-font", "a text style without a font"},
    {"inherited-scale", "a text style without a `horScale`, beside one that has it"},
    {"same-strike", "text styles that differ in their `encoding` alone"},
    {"text-overflow", "a text that runs out of its widget"},
    {"broken-word", "a wrapped text with a word that is wider than its widget"},
    {"text-cut", "a wrapped text of more than 20 lines or 100 words"},
    {"missing-glyph", "a character that the font doesn't have"},
    {"undecodable", "a text that isn't in the encoding of its style"},
    {"faint-text", "antialiased text that hardly stands out from its ground"},
    {"title-safe", "texts outside the middle 80 % of the screen, which every television shows"},
    {"unset-global", "a global that a script reads and nothing sets"},
    {"unknown-member", "a member of a widget or frame that the player doesn't have"},
    {"script-fails", "a script that ends with an error as the page opens"},
    {"statement-size", "a statement that nearly fills the compiler"},
    {"no-throw", "a `throw`, which throws nothing"},
    {"continue-in-switch", "a `continue` in a `switch` that leaves a block of variables open"},
    {"alias-count", "an `aliasCount`, which takes the place of a background"},
    {"endless-timer", "a repeating timer that nothing clears"},
    {"timer-restarts", "a repeating timer whose own function clears it in vain"},
    {"zero-timer", "a repeating timer of 0 milliseconds"},
    {"handler-again", "a function for an event that is given to its target again and again"},
    {"stays-active", "a target that hears keys before all pages, and that nothing removes"},
    {"endless-scroll", "a text container without a selection, which scrolls on beyond its lines"},
    {"unknown-allow", "an `allow` of a name that no check has"},
};

}  // namespace

std::span<const CheckKind> checkKinds() { return kKinds; }

std::vector<std::string> checkNames() {
  std::vector<std::string> names;
  for (const CheckKind& kind : kKinds) names.emplace_back(kind.name);
  return names;
}

std::string Finding::whole() const {
  KitMessage named = message;
  named.text = check + ": " + message.text;
  return named.whole();
}
