// How the kit's commands fail.
#pragma once

#include <stdexcept>
#include <string>

// An error in a source file; what() is "FILE:LINE: message".
struct SourceError : std::runtime_error {
  SourceError(const std::string& file, int line, const std::string& message)
      : std::runtime_error(file + ":" + std::to_string(line) + ": " + message) {}
};

// Any other error that ends a command with exit status 1; what() is the line to print, empty when all is said.
struct CommandError : std::runtime_error {
  using std::runtime_error::runtime_error;
};
