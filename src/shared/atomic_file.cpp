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

}  // namespace

bool replaceFileAtomically(const std::filesystem::path& target, std::string_view bytes,
                           mode_t mode) {
  std::string name = ".";
  name += target.filename().string();
  name += ".XXXXXX";
  std::string pattern = target.parent_path() / name;
  const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (fd < 0) return false;
  const bool written = ::fchmod(fd, mode) == 0 && writeAll(fd, bytes) && ::fsync(fd) == 0;
  const bool closed = ::close(fd) == 0;
  if (!written || !closed || ::rename(pattern.c_str(), target.c_str()) != 0) {
    ::unlink(pattern.c_str());
    return false;
  }
  return true;
}

}  // namespace korvo
