// The checks themselves, a function for each family. None reads a file that the page doesn't name.
//
// What a source says is enough for some; the others ask the player, which has opened the page.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "kit/check/checkedpage.h"
#include "kit/check/openedpage.h"

class PageCode;

// Takes what a check has found: its name, where, and what the player will do.
using Find = std::function<void(std::string_view check, const YamlPlace& place, std::string text)>;

void checkLinks(const CheckedPage& page, OpenedPage& opened, const Find& find);
void checkLooks(const CheckedPage& page, const Find& find);
void checkHighlights(const CheckedPage& page, const Find& find);
void checkStyles(const CheckedPage& page, const Find& find);
void checkFiles(const CheckedPage& page, OpenedPage& opened, const Find& find);
void checkTexts(const CheckedPage& page, OpenedPage& opened, const Find& find);
void checkScripts(const CheckedPage& page, OpenedPage& opened, const Find& find);
void checkHandlers(const CheckedPage& page, const PageCode& code, const Find& find);
