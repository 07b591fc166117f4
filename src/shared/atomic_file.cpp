#include "shared/atomic_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace korvo {
namespace {

bool writeAll(int fd, std::string_view bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t done = ::write(fd, bytes.data() + written, bytes.size() - written);
    if (done < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    written += static_cast<std::size_t>(done);
  }
  return true;
}

// The temporary's name: the target's, hidden, with mkstemp's six random characters after a dot.
std::string temporaryPrefix(const std::filesystem::path& target) {
  return "." + target.filename().string() + ".";
}
constexpr std::size_t randomCharacters = 6;

}  // namespace

bool replaceFileAtomically(const std::filesystem::path& target, std::string_view bytes,
                           mode_t mode) {
  std::string pattern =
      target.parent_path() / (temporaryPrefix(target) + std::string(randomCharacters, 'X'));
  const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (fd < 0) return false;
  const bool written = ::fchmod(fd, mode) == 0 && writeAll(fd, bytes) && ::fsync(fd) == 0;
  const bool closed = ::close(fd) == 0;
  if (!written || !closed || ::rename(pattern.c_str(), target.c_str()) != 0) {
    const int reason = errno;
    ::unlink(pattern.c_str());
    errno = reason;
    return false;
  }
  return true;
}

void removeLeftoverTemporaries(const std::filesystem::path& target) {
  const std::string prefix = temporaryPrefix(target);
  std::error_code error;
  std::error_code removal;
  for (std::filesystem::directory_iterator entry(target.parent_path(), error);
       !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.size() == prefix.size() + randomCharacters && name.starts_with(prefix)) {
      std::filesystem::remove(entry->path(), removal);
    }
  }
}

bool createPrivateDirectories(const std::filesystem::path& directory) {
  std::filesystem::path partial;
  for (const auto& part : directory) {
    partial /= part;
    if (::mkdir(partial.c_str(), 0700) == 0) {
      // mkdir's mode passes through the umask, which may take away the owner's own rights.
      if (::chmod(partial.c_str(), 0700) != 0) return false;
      continue;
    }
    struct stat status {};
    if (errno != EEXIST || ::stat(partial.c_str(), &status) != 0) return false;
    if (!S_ISDIR(status.st_mode)) {
      errno = ENOTDIR;
      return false;
    }
  }
  return true;
}

}  // namespace korvo
