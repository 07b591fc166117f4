#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

// What korvo's child processes (a chained status line, Codex's app-server) share: descriptors
// closed on scope exit, waits with a deadline, and a process group that ends as a whole.
namespace korvo::child_process {

// A file descriptor closed when it goes out of scope.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    reset(std::exchange(other.fd_, -1));
    return *this;
  }
  ~Descriptor() { reset(); }
  // Closes the descriptor held and holds `fd` instead.
  void reset(int fd = -1);
  int get() const { return fd_; }

 private:
  int fd_;
};

// Waits, until `deadline`, for `fd` to become readable; false once the deadline has passed.
bool readableBefore(int fd, std::chrono::steady_clock::time_point deadline);

// How a child is started.
struct Start {
  std::vector<std::string> argv;  // argv[0] is looked up on PATH when it has no slash
  int input = -1;                 // its standard input; -1: /dev/null
  int output = -1;                // its standard output; -1: /dev/null
  bool quietErrors = false;       // its standard error to /dev/null instead of ours
};

// A child in a process group of its own, with SIGPIPE and SIGXFSZ back at their defaults (the
// status line ignores them for itself). Its group is ended with SIGKILL when it goes out of scope,
// so what it started goes with it.
class Child {
 public:
  // Starts the child; `started()` tells whether that worked.
  explicit Child(const Start& start);
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child();

  bool started() const { return pid_ > 0; }
  // Waits until the child itself has ended or `deadline` passed; true when it ended.
  bool endedBefore(std::chrono::steady_clock::time_point deadline) const;
  // A descriptor that becomes readable once the child itself has ended; -1 when the system
  // cannot tell.
  int endedDescriptor() const { return ended_.get(); }

 private:
  pid_t pid_ = -1;
  Descriptor ended_;  // a pidfd: readable once the child has ended
};

}  // namespace korvo::child_process
