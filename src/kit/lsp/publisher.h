// Sends an editor what is wrong, file by file. A file that several pages include has the messages of all of them.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "kit/lsp/diagnoser.h"
#include "kit/rpc/rpcsender.h"

class Publisher {
 public:
  explicit Publisher(RpcSender& c) : client(c) {}

  // What is found of files that are not expected, or no more, is dropped: they have been closed meanwhile.
  void expect(const std::string& path);
  // From any thread.
  void publish(const std::string& path, const DiagnosisTask& task, const Diagnosis& found);
  void forget(const std::string& path, const FileSnapshot& files);

  // The diagnosed files that were made of this one when they were last looked at.
  std::vector<std::string> madeOf(const std::string& path);
  std::set<std::string> sourcesOf(const std::string& path);

 private:
  using ByFile = std::map<std::string, nlohmann::json>;  // arrays of diagnostics

  void send(const std::set<std::string>& paths, const FileSnapshot& files);

  RpcSender& client;
  std::mutex mutex;
  std::set<std::string> expected;
  std::map<std::string, ByFile> found;                   // by the file that was diagnosed
  std::map<std::string, std::set<std::string>> sources;  // likewise; full names
};
