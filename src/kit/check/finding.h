// What kpg check says about a page: where, which check, and what the player will do.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/errors.h"

struct Finding {
  std::string check;   // its name in checkKinds()
  KitMessage message;  // without that name

  std::string whole() const;  // "FILE:LINE: NAME: sentence"
};

struct CheckKind {
  std::string_view name;   // by which an author allows what it finds
  std::string_view about;  // one sentence, in the marks of the guide
};

std::span<const CheckKind> checkKinds();
std::vector<std::string> checkNames();
