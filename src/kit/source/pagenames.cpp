#include "kit/source/pagenames.h"

#include "kit/suggest.h"

void PageNames::define(NamedThing thing, const std::string& name, const YamlPlace& place, const std::string& what) {
  if (name.empty() || defined.emplace(std::pair(thing, name), place).second) return;
  again.push_back({thing, name, place, what, ""});
}

void PageNames::use(NamedThing thing, const std::string& name, const YamlPlace& place, const std::string& what,
                    const std::string& otherwise) {
  if (!name.empty()) uses.push_back({thing, name, place, what, otherwise});
}

std::vector<std::string> PageNames::namesOf(NamedThing thing) const {
  std::vector<std::string> names;
  for (const auto& [key, place] : defined)
    if (key.first == thing) names.push_back(key.second);
  return names;
}

std::vector<KitMessage> PageNames::warnings() const {
  std::vector<KitMessage> all;
  for (const Mention& use : uses) {
    if (defined.contains({use.thing, use.name})) continue;
    const char* kind = use.thing == NamedThing::widget ? "widget" : "text style";
    all.push_back(messageAt(use.place, "warning: " + use.what + ": there is no " + kind + " '" + use.name + "', and " +
                                           use.otherwise + suggestion(use.name, namesOf(use.thing))));
    all.back().check = "no-such-name";
  }
  for (const Mention& one : again) {
    const bool isWidget = one.thing == NamedThing::widget;
    const char* kind = isWidget ? "widget" : "text style";
    const char* found = isWidget ? "; links lead to the one that the player makes first, scripts reach the last"
                                 : "; widgets take the first, scripts reach the last";
    all.push_back(messageAt(one.place, "warning: " + one.what + ": another " + kind + " has the name '" + one.name +
                                           "', in line " + std::to_string(defined.at({one.thing, one.name}).line) +
                                           found));
    all.back().check = "name-twice";
  }
  return all;
}
