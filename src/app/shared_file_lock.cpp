#include "app/shared_file_lock.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"

namespace korvo {
namespace {

// How often a blocked wait wakes to look at its deadline and at a stop request.
constexpr long tickNanoseconds = 20'000'000;

void ignoreTick(int /*signal*/) {}

// Interrupts a blocking flock on the calling thread every tick: flock itself has no timeout, and
// a wait woken by the kernel when the holder lets go is first in line, unlike one that polls.
class Ticker {
 public:
  Ticker() {
    static std::once_flag installed;
    std::call_once(installed, [] {
      struct sigaction action {};
      action.sa_handler = &ignoreTick;  // no SA_RESTART: the wait returns EINTR
      sigemptyset(&action.sa_mask);
      ::sigaction(SIGALRM, &action, nullptr);
    });
    sigset_t tick;
    sigemptyset(&tick);
    sigaddset(&tick, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &tick, &previous_);
    sigevent event{};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = SIGALRM;
    event._sigev_un._tid = ::gettid();
    armed_ = ::timer_create(CLOCK_MONOTONIC, &event, &timer_) == 0;
    if (!armed_) return;
    // Periodic, so that a tick landing just before the wait began is followed by another.
    const itimerspec every{{0, tickNanoseconds}, {0, tickNanoseconds}};
    ::timer_settime(timer_, 0, &every, nullptr);
  }
  Ticker(const Ticker&) = delete;
  Ticker& operator=(const Ticker&) = delete;
  ~Ticker() {
    if (armed_) ::timer_delete(timer_);
    ::pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  }

  [[nodiscard]] bool armed() const { return armed_; }

 private:
  timer_t timer_{};
  bool armed_ = false;
  sigset_t previous_{};
};

[[noreturn]] void fail(int fd, const std::string& message) {
  ::close(fd);
  throw std::runtime_error(message);
}

// A lock file left readable by others by an older korvo is made private again.
void makePrivate(int fd) {
  struct stat status {};
  if (::fstat(fd, &status) == 0 && status.st_uid == ::geteuid() &&
      (status.st_mode & 07777) != 0600) {
    ::fchmod(fd, 0600);
  }
}

}  // namespace

SharedFileLock SharedFileLock::acquire(const std::filesystem::path& sharedFile,
                                       std::chrono::milliseconds patience,
                                       const std::stop_token& stop) {
  const auto directory = sharedFile.parent_path();
  if (!createPrivateDirectories(directory)) {
    throw std::runtime_error("cannot create the folder of the shared file " +
                             displayText(directory.string()) + ": " + std::strerror(errno));
  }
  const auto lockPath = directory / ".usage-snapshot.lock";
  const std::string lockName = displayText(lockPath.string());
  const int fd = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (fd < 0) {
    throw std::runtime_error("cannot open the lock " + lockName + ": " + std::strerror(errno));
  }
  makePrivate(fd);
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) {
      fail(fd, "cannot lock " + lockName + ": " + std::strerror(errno));
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const Ticker ticker;
    if (!ticker.armed()) {
      fail(fd, "cannot time the wait for the lock " + lockName + ": " + std::strerror(errno));
    }
    while (::flock(fd, LOCK_EX) != 0) {
      if (errno != EINTR) {
        fail(fd, "cannot lock " + lockName + ": " + std::strerror(errno));
      }
      if (stop.stop_requested()) fail(fd, "stopped waiting for the lock " + lockName);
      if (std::chrono::steady_clock::now() >= deadline) {
        fail(fd, "another process holds the lock " + lockName + "; gave up after " +
                     std::to_string(std::chrono::ceil<std::chrono::seconds>(patience).count()) +
                     " s");
      }
    }
  }
  removeLeftoverTemporaries(sharedFile);
  return SharedFileLock(fd);
}

SharedFileLock::SharedFileLock(SharedFileLock&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)) {}

SharedFileLock::~SharedFileLock() {
  // Closing the descriptor releases the lock.
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace korvo
