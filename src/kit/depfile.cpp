#include "kit/depfile.h"

namespace {

std::string escaped(const std::string& name) {
  std::string out;
  for (const char c : name) {
    if (c == ' ' || c == '#') out += '\\';
    if (c == '$') out += '$';
    out += c;
  }
  return out;
}

}  // namespace

std::string depfileText(const std::string& target, const std::vector<std::string>& inputs) {
  std::string text = escaped(target) + ":";
  for (const std::string& input : inputs) text += " \\\n  " + escaped(input);
  return text + "\n";
}
