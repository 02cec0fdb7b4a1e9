// Diagnoses files on a thread of its own, so that an editor waits for nothing while it asks for other things; or, where
// there are no threads, when somebody calls.
//
// What is asked for again before its turn is done once, as it is by then; and its turn comes when it has rested for a
// moment, so that nothing is done between the letters of a word.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "kit/lsp/diagnosis.h"
#include "kit/lsp/editedfiles.h"

struct DiagnosisTask {
  SourceKind kind = SourceKind::other;
  bool isSaved = true;
  FileSnapshot files;
};

class Diagnoser {
 public:
  // Called on the diagnoser's thread, with what the task was made of.
  using Done = std::function<void(const std::string& path, const DiagnosisTask& task, const Diagnosis& found)>;

  enum class Works { onItsThread, whenCalled };

  explicit Diagnoser(Done done, Works works = Works::onItsThread);
  ~Diagnoser();  // after what it is at; the rest is dropped

  void add(const std::string& path, DiagnosisTask task);
  void drop(const std::string& path);

  // For one that works when it is called: does what is due. Returns how long the rest has to wait; nothing when there
  // is none.
  std::optional<std::chrono::milliseconds> workNow();

 private:
  void work();
  std::optional<std::chrono::steady_clock::time_point> takeDue(std::unique_lock<std::mutex>& lock);

  const Done done;
  std::mutex mutex;
  std::condition_variable changed;
  struct Waiting {
    DiagnosisTask task;
    std::chrono::steady_clock::time_point due;
  };
  std::map<std::string, Waiting> waiting;
  bool ends = false;
  std::thread thread;  // the last member, since it uses the others; none where it works when it is called
};
