#include "app/chained_command.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace korvo {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { reset(); }
  void reset() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

// The input as an in-memory file, so the command reads it at its own pace and an unread input
// can never block us.
int inputFile(std::string_view input) {
  const int fd = ::memfd_create("korvo-status-line-input", MFD_CLOEXEC);
  if (fd < 0) return -1;
  std::size_t written = 0;
  while (written < input.size()) {
    const ssize_t done = ::write(fd, input.data() + written, input.size() - written);
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) {
      ::close(fd);
      return -1;
    }
    written += static_cast<std::size_t>(done);
  }
  if (::lseek(fd, 0, SEEK_SET) != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

// Waits, until `deadline`, for `fd` to become readable; false once the deadline has passed.
bool readableBefore(int fd, std::chrono::steady_clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    pollfd ready{fd, POLLIN, 0};
    const int polled = ::poll(&ready, 1, static_cast<int>(left.count()));
    if (polled > 0) return true;
    if (polled < 0 && errno != EINTR) return false;
  }
}

}  // namespace

std::optional<ChainedOutput> runChained(const std::string& command, std::string_view input,
                                        std::chrono::milliseconds limit) {
  Descriptor in(inputFile(input));
  int pipeEnds[2];
  if (in.get() < 0 || ::pipe2(pipeEnds, O_CLOEXEC) != 0) return std::nullopt;
  Descriptor readEnd(pipeEnds[0]);
  Descriptor writeEnd(pipeEnds[1]);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in.get(), 0);
  posix_spawn_file_actions_adddup2(&actions, writeEnd.get(), 1);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  // Its own process group, so a stuck command's children go with it; and the signals the status
  // line ignores for itself are the command's again.
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
  posix_spawnattr_setpgroup(&attributes, 0);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  sigaddset(&defaults, SIGXFSZ);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  const char* argv[] = {"/bin/sh", "-c", command.c_str(), nullptr};
  pid_t pid = 0;
  const int spawned = ::posix_spawn(&pid, "/bin/sh", &actions, &attributes,
                                    const_cast<char* const*>(argv), environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  writeEnd.reset();
  in.reset();
  if (spawned != 0) return std::nullopt;
  // Readable once the command has ended, which a closed output does not tell.
  Descriptor ended(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));

  ChainedOutput output;
  const auto deadline = std::chrono::steady_clock::now() + limit;
  char buffer[4096];
  while (output.finished) {
    if (!readableBefore(readEnd.get(), deadline)) {
      output.finished = false;
      break;
    }
    const ssize_t got = ::read(readEnd.get(), buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    const auto room = maxOutputBytes - output.out.size();
    output.out.append(buffer, std::min(room, static_cast<std::size_t>(got)));
  }
  // Without a way to wait for its end with a deadline, a closed output counts as the end.
  if (output.finished && ended.get() >= 0) output.finished = readableBefore(ended.get(), deadline);
  // The whole group goes, the command's own processes left behind included; the command has not
  // been reaped yet, so its group cannot be another's.
  ::kill(-pid, SIGKILL);
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return output;
}

}  // namespace korvo
