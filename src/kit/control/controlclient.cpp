#include "kit/control/controlclient.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "kit/errors.h"

namespace {

#ifdef MSG_NOSIGNAL
constexpr int kQuietly = MSG_NOSIGNAL;
#else
constexpr int kQuietly = 0;
#endif

// Until there is no more, or nobody takes it.
void pass(int from, int to) {
  char bytes[65536];
  for (ssize_t n; (n = read(from, bytes, sizeof bytes)) > 0;)
    for (ssize_t done = 0; done < n;) {
      const ssize_t part = write(to, bytes + done, size_t(n - done));
      if (part < 0) return;
      done += part;
    }
}

}  // namespace

int connectLocally(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw KitError(path, "this is too long for the name of a socket");
  std::memcpy(address.sun_path, path.c_str(), path.size());
  const int made = ::socket(AF_UNIX, SOCK_STREAM, 0);
  if (made >= 0 && connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return made;
  const int error = errno;
  if (made >= 0) close(made);
  throw KitError(path, error == ECONNREFUSED ? "nobody listens there any more" : std::strerror(error));
}

ControlClient::ControlClient(const std::string& p) : path(p), socket(connectLocally(p)) {}

ControlClient::~ControlClient() { close(socket); }

std::string ControlClient::ask(std::string_view line) {
  const std::string sent = std::string(line) + "\n";
  for (size_t at = 0; at < sent.size();) {
    const ssize_t n = send(socket, sent.data() + at, sent.size() - at, kQuietly);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) throw KitError(path, std::strerror(errno));
    at += size_t(n);
  }
  for (size_t looked = 0;;) {
    if (const size_t end = received.find('\n', looked); end != received.npos) {
      std::string answer = received.substr(0, end);
      received.erase(0, end + 1);
      return answer;
    }
    looked = received.size();
    char bytes[65536];
    const ssize_t n = recv(socket, bytes, sizeof bytes, 0);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) throw KitError(path, std::strerror(errno));
    if (n == 0) throw KitError(path, "the studio has gone without an answer");
    received.append(bytes, size_t(n));
  }
}

void joinLocally(const std::string& path) {
  const int there = connectLocally(path);
  std::thread([there] {
    pass(STDIN_FILENO, there);
    shutdown(there, SHUT_WR);
  }).detach();
  pass(there, STDOUT_FILENO);
}
