// The module. It has nothing of the kit's but the declaration of what it is.
#include "kit/serve/pageserver.h"

#include <httplib.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <mutex>
#include <random>
#include <thread>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr char kLoopback[] = "127.0.0.1";
constexpr size_t kThreads = 32;  // each looker keeps one, and browsers keep more for a while
constexpr std::chrono::seconds kSignOfLife{10};

// 128 random bits.
std::string makeToken() {
  std::random_device random;
  std::string token;
  for (int i = 0; i < 4; ++i) {
    std::array<char, 9> digits{};
    std::snprintf(digits.data(), digits.size(), "%08x", unsigned(random()));
    token += digits.data();
  }
  return token;
}

const char* kindOf(const fs::path& name) {
  constexpr std::pair<const char*, const char*> kKinds[] = {{".html", "text/html; charset=utf-8"},
                                                            {".js", "text/javascript; charset=utf-8"},
                                                            {".css", "text/css; charset=utf-8"},
                                                            {".svg", "image/svg+xml"},
                                                            {".wasm", "application/wasm"}};
  for (const auto& [ending, kind] : kKinds)
    if (name.extension() == ending) return kind;
  return "application/octet-stream";
}

class LoopbackServer : public PageServer {
 public:
  LoopbackServer(fs::path v, FileOf f) : viewer(std::move(v)), fileOf(std::move(f)) { answerAll(); }
  ~LoopbackServer() override;

  bool start(int wanted) override;
  std::string address() const override;
  std::string placeOf(const fs::path& file) const override { return "/" + token + "/files" + file.generic_string(); }
  void tell(const std::string& json) override;

 private:
  void answerAll();
  void answerViewer(const std::string& name, httplib::Response& answer) const;
  void answerFile(const std::string& name, httplib::Response& answer) const;
  void answerEvents(httplib::Response& answer);

  const fs::path viewer;
  const FileOf fileOf;
  const std::string token = makeToken();
  int port = 0;
  std::mutex mutex;  // what follows
  std::condition_variable told;
  std::string last;
  uint64_t count = 0;
  bool ends = false;
  httplib::Server server;
  std::thread thread;
};

void LoopbackServer::answerAll() {
  // A port that another program listens on is taken, and one that was just left isn't.
  server.set_socket_options([](socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  server.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
  server.set_default_headers({{"Cache-Control", "no-store"},
                              {"Referrer-Policy", "no-referrer"},
                              {"X-Content-Type-Options", "nosniff"},
                              {"Cross-Origin-Resource-Policy", "same-origin"},
                              {"Content-Security-Policy",
                               "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; worker-src 'self'; "
                               "connect-src 'self'; style-src 'self' 'unsafe-inline'; img-src 'self' data:; "
                               "base-uri 'none'; form-action 'none'; frame-ancestors 'self' vscode-webview:"}});
  server.Get("/" + token + "/events",
             [this](const httplib::Request&, httplib::Response& answer) { answerEvents(answer); });
  server.Get("/" + token + "/files(/.*)", [this](const httplib::Request& request, httplib::Response& answer) {
    answerFile(request.matches[1], answer);
  });
  server.Get("/" + token + "/([a-z.-]*)", [this](const httplib::Request& request, httplib::Response& answer) {
    answerViewer(request.matches[1], answer);
  });
}

void LoopbackServer::answerViewer(const std::string& name, httplib::Response& answer) const {
  const fs::path file = viewer / (name.empty() ? "watch.html" : name);
  std::ifstream in(file, std::ios::binary);
  if (in)
    answer.set_content(std::string(std::istreambuf_iterator<char>(in), {}), kindOf(file));
  else
    answer.status = 404;
}

void LoopbackServer::answerFile(const std::string& name, httplib::Response& answer) const {
  if (const auto bytes = fileOf(fs::path(name).lexically_normal()))
    answer.set_content(*bytes, "application/octet-stream");
  else
    answer.status = 404;
}

// Server-sent events: each has one line of data.
void LoopbackServer::answerEvents(httplib::Response& answer) {
  answer.set_chunked_content_provider("text/event-stream",
                                      [this, seen = uint64_t{0}](size_t, httplib::DataSink& sink) mutable {
                                        std::string text;
                                        {
                                          std::unique_lock lock(mutex);
                                          told.wait_for(lock, kSignOfLife, [&] { return ends || count > seen; });
                                          if (ends) return false;
                                          text = count > seen ? "data: " : ": here";
                                          if (count > seen) text += last;
                                          text += "\n\n";
                                          seen = count;
                                        }
                                        return sink.write(text.data(), text.size());
                                      });
}

LoopbackServer::~LoopbackServer() {
  {
    const std::lock_guard lock(mutex);
    ends = true;
  }
  told.notify_all();
  server.stop();
  if (thread.joinable()) thread.join();
}

bool LoopbackServer::start(int wanted) {
  port = wanted != 0 ? wanted : server.bind_to_any_port(kLoopback);
  if (port < 0 || (wanted != 0 && !server.bind_to_port(kLoopback, wanted))) return false;
  thread = std::thread([this] { server.listen_after_bind(); });
  return true;
}

std::string LoopbackServer::address() const {
  std::string all = "http://";
  all.append(kLoopback).append(":").append(std::to_string(port)).append("/").append(token).append("/");
  return all;
}

void LoopbackServer::tell(const std::string& json) {
  {
    const std::lock_guard lock(mutex);
    last = json;
    ++count;
  }
  told.notify_all();
}

}  // namespace

extern "C" MakePageServer makePageServer;
PageServer* makePageServer(const fs::path& viewer, PageServer::FileOf& fileOf) {
  return new LoopbackServer(viewer, std::move(fileOf));
}
