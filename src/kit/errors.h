// How the kit reports what is wrong with an author's files: a place and a sentence.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

struct KitMessage {
  std::string file;  // empty when no file is at fault
  int line = 0;      // from 1; 0 for the file as a whole
  std::string text;

  // "FILE:LINE: message", as far as the place is known.
  std::string whole() const {
    if (file.empty()) return text;
    return line > 0 ? file + ":" + std::to_string(line) + ": " + text : file + ": " + text;
  }
};

// What every function of the kit throws; what() is the message with its place.
struct KitError : std::runtime_error {
  explicit KitError(const KitMessage& m) : std::runtime_error(m.whole()), message(m) {}
  explicit KitError(const std::string& text) : KitError(KitMessage{"", 0, text}) {}
  KitError(const std::string& file, const std::string& text) : KitError(KitMessage{file, 0, text}) {}
  KitError(const std::string& file, int line, const std::string& text) : KitError(KitMessage{file, line, text}) {}

  KitMessage message;
};

// Takes what is odd but no error. An empty one is not called.
using KitWarn = std::function<void(const KitMessage&)>;
