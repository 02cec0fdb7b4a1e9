// A page source in a folder of its own, opened as the studio does.
#pragma once

#include <gtest/gtest.h>

#include "kit/files.h"
#include "kit/source/pagebuild.h"
#include "studio/inspector/widgetsources.h"
#include "studio/session/session.h"
#include "support/temporaryfolder.h"

class InspectorPage : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) { writeFile(at(name), text.data(), text.size()); }
  std::string at(const std::string& name) const { return (folder.path() / name).string(); }
  std::string read(const std::string& name) const {
    const std::vector<uint8_t> bytes = readFile(at(name));
    return {bytes.begin(), bytes.end()};
  }

  // Writes the source as p.yaml, and opens it.
  void open(const std::string& source) {
    write("p.yaml", source);
    session = std::make_unique<Session>(at("p.yaml"));
    reload();
  }
  void reload() {
    ASSERT_TRUE(session->reload()) << session->errors().front().whole();
    sources.emplace(run());
  }

  PageRun& run() { return *session->run(); }
  Engine& engine() { return run().engine(); }
  void talk(const std::string& line) { run().act({PageAction::eval, line}); }

  // The first widget of that name; 0 for none.
  WidgetId idOf(const std::string& name) {
    for (const WidgetView& view : inspectWidgets(engine()))
      if (view.name == name) return view.id;
    return 0;
  }

  const TemporaryFolder folder;
  std::unique_ptr<Session> session;
  std::optional<WidgetSources> sources;
};
