// A page in the previewer without windows: built from source, loaded, driven, looked at.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "engine/page/pageload.h"
#include "host/headless/headlessdesktop.h"
#include "support/temporaryfolder.h"

// Every test gets a folder of its own as the current directory, and an engine that has started and drawn nothing yet.
class PageTest : public testing::Test {
 protected:
  PageTest();
  ~PageTest() override;

  void writeText(const std::string& name, const std::string& text);

  // Compiles the YAML source into the folder.
  void build(const std::string& name, const std::string& source);

  // Builds the source as page.kpg and loads it as the previewer does, up to the first picture.
  bool load(const std::string& source);
  bool loadFile(const std::string& name);

  void key(const std::string& name);

  // What the console has shown, without the collector's lines.
  std::string log() const;

  uint32_t pixel(int x, int y) const { return desktop.window()[size_t(y) * 720 + size_t(x)]; }
  Widget* widget(const char* name) const { return frameFindWidget(topFrame(), name); }
  std::string focusName() const;

  HeadlessDesktop desktop;
  EngineScope here{desktop.shell.engine};

 private:
  const std::filesystem::path before;
  const TemporaryFolder temporary;
  const std::filesystem::path& folder = temporary.path();
};
