#include "app/child_process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace korvo::child_process {

void Descriptor::reset(int fd) {
  if (fd_ >= 0) ::close(fd_);
  fd_ = fd;
}

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

Child::Child(const Start& start) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  const auto connect = [&](int fd, int target) {
    if (fd >= 0) {
      posix_spawn_file_actions_adddup2(&actions, fd, target);
    } else {
      posix_spawn_file_actions_addopen(&actions, target, "/dev/null", O_RDWR, 0);
    }
  };
  connect(start.input, STDIN_FILENO);
  connect(start.output, STDOUT_FILENO);
  if (start.quietErrors) connect(-1, STDERR_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
  posix_spawnattr_setpgroup(&attributes, 0);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  sigaddset(&defaults, SIGXFSZ);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  std::vector<char*> argv;
  argv.reserve(start.argv.size() + 1);
  for (const std::string& word : start.argv) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  pid_t pid = 0;
  const int spawned = argv.size() > 1 ? ::posix_spawnp(&pid, argv.front(), &actions, &attributes,
                                                       argv.data(), environ)
                                      : EINVAL;
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (spawned != 0) return;
  pid_ = pid;
  ended_.reset(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

Child::~Child() {
  if (pid_ <= 0) return;
  // The whole group goes, what the child started included; the child has not been reaped yet,
  // so its group cannot be another's.
  ::kill(-pid_, SIGKILL);
  int status = 0;
  while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
}

bool Child::endedBefore(std::chrono::steady_clock::time_point deadline) const {
  // Without a pidfd there is no waiting with a deadline: count the child as running.
  return ended_.get() >= 0 && readableBefore(ended_.get(), deadline);
}

}  // namespace korvo::child_process
