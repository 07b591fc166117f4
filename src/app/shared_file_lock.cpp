#include "app/shared_file_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace korvo {

std::optional<SharedFileLock> SharedFileLock::acquire(const std::filesystem::path& sharedFile) {
  std::error_code error;
  std::filesystem::create_directories(sharedFile.parent_path(), error);
  if (error) return std::nullopt;
  const auto lockPath = sharedFile.parent_path() / ".usage-snapshot.lock";
  const int fd = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
  if (fd < 0) return std::nullopt;
  while (::flock(fd, LOCK_EX) != 0) {
    if (errno != EINTR) {
      ::close(fd);
      return std::nullopt;
    }
  }
  return SharedFileLock(fd);
}

SharedFileLock::SharedFileLock(SharedFileLock&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)) {}

SharedFileLock::~SharedFileLock() {
  // Closing the descriptor releases the lock.
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace korvo
