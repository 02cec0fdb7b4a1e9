#include "kit/rpc/rpcconnection.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <condition_variable>
#include <deque>
#include <string>
#include <thread>

using nlohmann::json;

namespace {

constexpr size_t kMostBytes = size_t{64} << 20;  // of a message

// A line of a header without its end; false at the end of the stream.
bool readLine(std::FILE* in, std::string* line) {
  line->clear();
  for (int c; (c = std::fgetc(in)) != EOF;) {
    if (c == '\n') {
      if (line->ends_with('\r')) line->pop_back();
      return true;
    }
    if (line->size() == 1024) return false;
    line->push_back(char(c));
  }
  return false;
}

// The length that the header says; none at the end of the stream, or for what is no header.
std::optional<size_t> readHeader(std::FILE* in) {
  std::optional<size_t> length;
  for (std::string line; readLine(in, &line);) {
    if (line.empty()) return length;
    std::string key = line.substr(0, line.find(':'));
    std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    if (key != "content-length") continue;
    const size_t digits = line.find_first_of("0123456789");
    if (digits == std::string::npos) return {};
    size_t n = 0;
    std::from_chars(line.data() + digits, line.data() + line.size(), n);
    if (n > kMostBytes) return {};
    length = n;
  }
  return {};
}

// The standard output, on which nothing but messages may come: what the system itself prints there goes to the error
// stream from now on.
std::shared_ptr<std::FILE> standardOutputAlone() {
  std::fflush(stdout);
  const int kept = dup(STDOUT_FILENO);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  return {fdopen(kept, "wb"), [](std::FILE* stream) { std::fclose(stream); }};
}

}  // namespace

struct RpcConnection::Inbox {
  std::mutex mutex;
  std::condition_variable filled;
  std::deque<json> messages;
  bool ended = false;

  void readAll(std::FILE* in) {
    while (const auto length = readHeader(in)) {
      std::string text(*length, '\0');
      if (std::fread(text.data(), 1, text.size(), in) != text.size()) break;
      json message = json::parse(text, nullptr, false);
      if (message.is_discarded()) message = nullptr;
      const std::lock_guard lock(mutex);
      messages.push_back(std::move(message));
      filled.notify_one();
    }
    const std::lock_guard lock(mutex);
    ended = true;
    filled.notify_one();
  }
};

RpcConnection::RpcConnection(std::shared_ptr<std::FILE> in, std::shared_ptr<std::FILE> o)
    : inbox(std::make_shared<Inbox>()), out(std::move(o)) {
  std::thread([box = inbox, in] { box->readAll(in.get()); }).detach();
}

RpcConnection::RpcConnection()
    : RpcConnection(std::shared_ptr<std::FILE>(stdin, [](std::FILE*) {}), standardOutputAlone()) {}

std::optional<json> RpcConnection::take(std::chrono::milliseconds wait) {
  std::unique_lock lock(inbox->mutex);
  inbox->filled.wait_for(lock, wait, [&] { return !inbox->messages.empty() || inbox->ended; });
  if (inbox->messages.empty()) return {};
  json message = std::move(inbox->messages.front());
  inbox->messages.pop_front();
  return message;
}

bool RpcConnection::hasEnded() const {
  const std::lock_guard lock(inbox->mutex);
  return inbox->ended && inbox->messages.empty();
}

void RpcConnection::send(const json& message) {
  // Texts of pages may have any bytes.
  const std::string text = message.dump(-1, ' ', false, json::error_handler_t::replace);
  const std::lock_guard lock(sending);
  std::fprintf(out.get(), "Content-Length: %zu\r\n\r\n", text.size());
  std::fwrite(text.data(), 1, text.size(), out.get());
  std::fflush(out.get());
}
