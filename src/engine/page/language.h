// Scripting languages, found by name. A page says which one its scripts are in.
#pragma once

#include <cstdint>
#include <map>
#include <string>

struct Frame;

struct ScriptingLanguage {
  int (*attach)(Frame* frame);                      // the page's scripts may start: publishes its widgets and styles
  int (*detach)(Frame* frame) noexcept;             // the page goes: resets the frame's script environment
  int (*loadFile)(Frame* frame, const char* path);  // 0 on failure
  int (*run)(Frame* frame, const uint8_t* bytes, uint32_t length);  // a script block stored in the page
};

using ScriptingLanguages = std::map<std::string, ScriptingLanguage, std::less<>>;

ScriptingLanguages& currentLanguages();  // of the engine that is current on this thread

bool languageRegister(const char* name, const ScriptingLanguage& language);  // false when the name is taken
const ScriptingLanguage* languageFind(const char* name);                     // null when there is none
