// What scripts find on the player without anybody having written it: global names, and the members of its objects, each
// with its parameters and one line of help.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

struct KnownMember {
  std::string_view object;  // "Widget"; empty for a global name
  std::string_view name;
  std::string_view parameters;  // "(id, f)"; empty for what is no function
  std::string_view help;        // in the guide's marks
};

std::span<const KnownMember> knownMembers();

// Those of the object and of what it descends from, its own first. None for an object that isn't known.
std::vector<const KnownMember*> membersOfObject(std::string_view object);

// Of global names those alone, for an empty object; null if there is none.
const KnownMember* knownMember(std::string_view object, std::string_view name);
bool isKnownSelector(std::string_view name);  // of any object

// What a chain of names leads to, "topFrame" to "Frame"; empty when that isn't known.
std::string objectOfChain(std::string_view chain);
