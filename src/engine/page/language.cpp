#include "engine/page/language.h"

#include <string_view>

bool languageRegister(const char* name, const ScriptingLanguage& language) {
  return currentLanguages().emplace(name, language).second;
}

const ScriptingLanguage* languageFind(const char* name) {
  const ScriptingLanguages& languages = currentLanguages();
  const auto found = languages.find(std::string_view(name));
  return found == languages.end() ? nullptr : &found->second;
}
