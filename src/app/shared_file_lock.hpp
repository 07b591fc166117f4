#pragma once

#include <chrono>
#include <filesystem>
#include <stop_token>

namespace korvo {

// The exclusive lock every writer of the shared file holds while it reads, changes and saves it:
// `flock` on ".usage-snapshot.lock" beside the file. The widgets only read and never lock.
class SharedFileLock {
 public:
  // Takes the lock of the shared file at `sharedFile`, creating its folder (0700) and the lock
  // file (0600), then removes the temporary files of writers killed while saving. Waits at most
  // `patience` for a process that holds it, and no longer once `stop` is requested. Throws
  // std::runtime_error with a one-line message naming the lock file when it gives up.
  static SharedFileLock acquire(const std::filesystem::path& sharedFile,
                                std::chrono::milliseconds patience,
                                const std::stop_token& stop = {});

  SharedFileLock(SharedFileLock&& other) noexcept;
  SharedFileLock& operator=(SharedFileLock&&) = delete;
  SharedFileLock(const SharedFileLock&) = delete;
  SharedFileLock& operator=(const SharedFileLock&) = delete;
  ~SharedFileLock();

 private:
  explicit SharedFileLock(int fd) : fd_(fd) {}
  int fd_;
};

}  // namespace korvo
