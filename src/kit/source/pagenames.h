// The names of a page's widgets and text styles, and who uses them.
//
// The player looks a name up when it needs it, and goes on without what it doesn't find.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/source/schema.h"
#include "kit/yaml/yamlnode.h"

class PageNames {
 public:
  // `what` calls the attribute in messages, as in "start of page"; `otherwise` says what the player does when nothing
  // has the name.
  void define(NamedThing thing, const std::string& name, const YamlPlace& place, const std::string& what);
  void use(NamedThing thing, const std::string& name, const YamlPlace& place, const std::string& what,
           const std::string& otherwise);

  // Names that nothing has, and widgets of one name.
  std::vector<KitMessage> warnings() const;

 private:
  struct Mention {
    NamedThing thing;
    std::string name;
    YamlPlace place;
    std::string what, otherwise;
  };

  std::vector<std::string> namesOf(NamedThing thing) const;

  std::map<std::pair<NamedThing, std::string>, YamlPlace> defined;
  std::vector<Mention> uses, again;
};
