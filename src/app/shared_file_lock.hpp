#pragma once

#include <filesystem>
#include <optional>

namespace korvo {

// The exclusive lock every writer of the shared file holds while it reads, changes and saves it:
// `flock` on ".usage-snapshot.lock" beside the file. The widgets only read and never lock.
class SharedFileLock {
 public:
  // Waits for the lock of the shared file at `sharedFile`, creating its directory and the lock
  // file; none when either cannot be made.
  static std::optional<SharedFileLock> acquire(const std::filesystem::path& sharedFile);

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
