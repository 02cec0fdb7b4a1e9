// Page sources: YAML to a page tree.
//
// All that is wrong with a source is reported at once, in the order of its lines.
#pragma once

#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/source/pagetree.h"

struct PageSourceOptions {
  // Leaves out the names of scripts, FILE:LINE WIDGET.HOOK, by which a traceback says where a fault is. They take some
  // of the player's memory while a script runs.
  bool strip = false;
  // Keeps the lines of scripts, for PageTree::lines.
  bool lines = false;
  // For texts that are being edited.
  ReadFile read = readFile;
  // Where what is wrong goes; the tree then lacks what can't be read. Without it, that is thrown.
  std::vector<KitMessage>* errors = nullptr;
};

// Reads the source at `path` and compiles its scripts. Throws BuildError; in spite of PageSourceOptions::errors for a
// source that can't be read as a whole, such as one that is no YAML.
PageTree readPageSource(const std::string& path, const KitWarn& warn = {}, const PageSourceOptions& options = {});

// A source as the page's reader sees it: without constants, templates and the like.
struct PlainSource {
  std::string text;
  std::vector<std::string> sources;  // all that was read
};

// Throws BuildError.
PlainSource plainPageSource(const std::string& path);
