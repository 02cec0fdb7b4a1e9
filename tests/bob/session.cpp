#include "bob/session.h"

#include <regex>

std::string Session::plain(const std::string& text) {
  static const std::regex report("\\[GC[^\\]]*\\]\n"), identity("-[0-9a-f]{8}>");
  return std::regex_replace(std::regex_replace(text, report, ""), identity, "-#>");
}
