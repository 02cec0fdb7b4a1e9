#include "studio/editor/scripterrors.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace {

// "FILE:LINE" at the end of a line of a traceback, after " at ".
bool takePlace(std::string_view line, KitMessage* message) {
  const size_t at = line.rfind(" at ");
  const size_t colon = line.rfind(':');
  if (at == std::string_view::npos || colon == std::string_view::npos || colon < at) return false;
  int number = 0;
  const auto [end, error] = std::from_chars(line.data() + colon + 1, line.data() + line.size(), number);
  if (error != std::errc() || end != line.data() + line.size()) return false;
  message->file = line.substr(at + 4, colon - at - 4);
  message->line = number;
  return true;
}

}  // namespace

std::vector<KitMessage> scriptErrors(const std::vector<std::string>& complaints) {
  constexpr std::string_view kBegin = "Error: ";
  std::vector<KitMessage> errors;
  for (const std::string& complaint : complaints) {
    const size_t begin = complaint.find(kBegin);
    if (begin == std::string::npos) continue;
    std::string_view left = std::string_view(complaint).substr(begin + kBegin.size());
    KitMessage message{"", 0, std::string(left.substr(0, left.find('\n')))};
    bool isPlaced = false;
    while (!isPlaced && !left.empty()) {
      const std::string_view line = left.substr(0, left.find('\n'));
      left.remove_prefix(std::min(line.size() + 1, left.size()));
      isPlaced = takePlace(line, &message);
    }
    const auto isSame = [&](const KitMessage& e) {
      return e.file == message.file && e.line == message.line && e.text == message.text;
    };
    if (std::none_of(errors.begin(), errors.end(), isSame)) errors.push_back(std::move(message));
  }
  return errors;
}
