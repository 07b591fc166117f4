#include "app/codex_live.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "app/child_process.hpp"
#include "base/clock.hpp"
#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"
#include "sources/codex_app_server_answer.hpp"

namespace korvo::codex_live {
namespace {

using child_process::Descriptor;

// An answer is a few kilobytes; a longer line is not one and is skipped.
constexpr std::size_t maxLineBytes = std::size_t{1} << 20;
// A server that prints this much without answering is not going to.
constexpr std::size_t maxOutputBytes = std::size_t{16} << 20;

// Writes to a socket, so a server that has ended gives an error rather than a SIGPIPE.
bool sendAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t done = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(done));
  }
  return true;
}

// Takes `lockFile` without waiting; an empty descriptor when another ask holds it. An ask that
// cannot make its lock file goes ahead unlocked: a second ask is a cost, not a fault.
std::optional<Descriptor> takeLock(const std::filesystem::path& lockFile) {
  if (!createPrivateDirectories(lockFile.parent_path())) return Descriptor();
  Descriptor fd(::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (fd.get() < 0) return Descriptor();
  if (::flock(fd.get(), LOCK_EX | LOCK_NB) == 0) return fd;
  return std::nullopt;
}

enum class Event { output, ended, timeUp };

// Waits for the server's output, the server's end or the deadline, output first: a launcher's
// child may hold the output open after the server itself has gone.
Event nextEvent(int output, int ended, std::chrono::steady_clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return Event::timeUp;
    pollfd ready[2] = {{output, POLLIN, 0}, {ended, POLLIN, 0}};
    const int polled = ::poll(ready, ended >= 0 ? 2 : 1, static_cast<int>(left.count()));
    if (polled < 0 && errno != EINTR) return Event::timeUp;
    if (polled <= 0) continue;
    if ((ready[0].revents & (POLLIN | POLLHUP)) != 0) return Event::output;
    if ((ready[1].revents & POLLIN) != 0) return Event::ended;
  }
}

Outcome failed(std::string what) {
  return {std::nullopt, "Codex app-server: " + std::move(what)};
}

// What a line of the server's output comes to: none when it is neither an error nor the answer.
std::optional<Outcome> outcomeOf(std::string_view line) {
  const Date now = clock::now();
  if (auto setup = codex_app_server::readAnswer(line, codex_app_server::initializeId, now);
      setup && setup->error) {
    return failed(*setup->error);
  }
  auto answer = codex_app_server::readAnswer(line, codex_app_server::rateLimitsId, now);
  if (!answer) return std::nullopt;
  if (answer->error) return failed(*answer->error);
  if (!answer->limits) return failed("the answer holds no limits");
  return Outcome{std::move(answer->limits), std::nullopt};
}

// Splits the server's output into lines; a line too long to be an answer is skipped whole.
class LineSplitter {
 public:
  // Adds `chunk`; the outcome of the first line in it that has one.
  std::optional<Outcome> add(std::string_view chunk) {
    while (!chunk.empty()) {
      const auto newline = chunk.find('\n');
      if (!skipping_) pending_.append(chunk.substr(0, newline));
      if (pending_.size() > maxLineBytes) {
        pending_.clear();
        skipping_ = true;
      }
      if (newline == std::string_view::npos) break;
      chunk.remove_prefix(newline + 1);
      const bool whole = !skipping_;
      skipping_ = false;
      if (whole) {
        if (auto outcome = outcomeOf(pending_)) return outcome;
      }
      pending_.clear();
    }
    return std::nullopt;
  }

 private:
  std::string pending_;
  bool skipping_ = false;  // inside a line too long to be an answer
};

Outcome exchange(const std::string& command, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  int toServer[2];
  int fromServer[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, toServer) != 0) {
    return failed(std::strerror(errno));
  }
  Descriptor requestRead(toServer[0]);
  Descriptor requestWrite(toServer[1]);
  if (::pipe2(fromServer, O_CLOEXEC) != 0) return failed(std::strerror(errno));
  Descriptor answerRead(fromServer[0]);
  Descriptor answerWrite(fromServer[1]);
  const child_process::Child server(
      {{command, "app-server"}, requestRead.get(), answerWrite.get(), true});
  requestRead.reset();
  answerWrite.reset();
  if (!server.started()) return failed("cannot start " + displayText(command));
  // The three requests fit in the socket's buffer, so this never waits for a server that does not
  // read.
  if (!sendAll(requestWrite.get(), codex_app_server::requestLines(KORVO_VERSION))) {
    return failed("it ended before reading the request");
  }

  LineSplitter lines;
  std::size_t total = 0;
  char buffer[8192];
  for (;;) {
    switch (nextEvent(answerRead.get(), server.endedDescriptor(), deadline)) {
      case Event::timeUp:
        return failed("no answer within " + std::to_string(limit.count() / 1000) + " s");
      case Event::ended:
        return failed("it ended without answering");
      case Event::output:
        break;
    }
    const ssize_t got = ::read(answerRead.get(), buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return failed("it ended without answering");
    total += static_cast<std::size_t>(got);
    if (total > maxOutputBytes) return failed("it printed too much without answering");
    if (auto outcome = lines.add({buffer, static_cast<std::size_t>(got)})) return *outcome;
  }
}

}  // namespace

Outcome ask(const std::string& command, std::chrono::milliseconds limit,
            const std::optional<std::filesystem::path>& lockFile) {
  std::optional<Descriptor> lock;
  if (lockFile) {
    lock = takeLock(*lockFile);
    if (!lock) return {};
  }
  return exchange(command, limit);
}

}  // namespace korvo::codex_live
