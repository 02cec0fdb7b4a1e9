#include "engine/language.h"

#include <map>
#include <string>
#include <string_view>

namespace {
std::map<std::string, ScriptingLanguage, std::less<>> languages;
}

bool languageRegister(const char* name, const ScriptingLanguage& language) {
  return languages.emplace(name, language).second;
}

const ScriptingLanguage* languageFind(const char* name) {
  const auto found = languages.find(std::string_view(name));
  return found == languages.end() ? nullptr : &found->second;
}

void languagesReset() { languages.clear(); }
