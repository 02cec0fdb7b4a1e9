// A page source in a folder of its own, open in a session that is watched.
#pragma once

#include <gtest/gtest.h>

#include "kit/files.h"
#include "studio/session/session.h"
#include "studio/timeline/runwatch.h"
#include "support/temporaryfolder.h"

class WatchedSessionTest : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) {
    writeFile((folder.path() / name).string(), text.data(), text.size());
  }
  std::string at(const std::string& name) const { return (folder.path() / name).string(); }

  void open(const std::string& source) {
    write("p.yaml", source);
    SessionOptions options;
    options.limitSeconds = 10;
    options.prepare = [this](PageRun& run) { run.watch(std::make_unique<RunWatch>(run, timeline, memory)); };
    session = std::make_unique<Session>(at("p.yaml"), options);
    ASSERT_TRUE(session->restart()) << session->errors().front().whole();
  }
  void key(const std::string& name) { session->act({PageAction::key, name}); }
  void type(const std::string& line) { session->act({PageAction::eval, line}); }

  const TemporaryFolder folder;
  Timeline timeline;
  MemoryMeter memory;
  std::unique_ptr<Session> session;  // ends before what watches it
};
