#include "shared/file_bytes.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace korvo {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

const char* kindOf(mode_t mode) {
  if (S_ISDIR(mode)) return "a directory";
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISCHR(mode)) return "a character device";
  if (S_ISBLK(mode)) return "a block device";
  if (S_ISSOCK(mode)) return "a socket";
  return "not a plain file";
}

std::string tooLarge(std::size_t maxBytes) {
  return "file too large (over " + std::to_string(maxBytes) + " bytes)";
}

}  // namespace

Decoded<std::string> readRegularFile(const std::filesystem::path& path, std::size_t maxBytes) {
  Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (file.get() < 0) {
    if (errno == ENOENT) return DecodeFailure{"missing file " + path.string()};
    return DecodeFailure{"cannot open " + path.string() + ": " + std::strerror(errno)};
  }
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) {
    return DecodeFailure{"cannot inspect " + path.string() + ": " + std::strerror(errno)};
  }
  if (!S_ISREG(status.st_mode)) {
    return DecodeFailure{"not a regular file: " + path.string() + " is " + kindOf(status.st_mode)};
  }
  if (status.st_size < 0 || static_cast<unsigned long long>(status.st_size) > maxBytes) {
    return DecodeFailure{tooLarge(maxBytes)};
  }
  // Read until end of file rather than trusting the size, one byte past the limit to notice a
  // file that grew meanwhile.
  std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
  std::size_t filled = 0;
  for (;;) {
    if (filled == bytes.size()) {
      if (bytes.size() > maxBytes) return DecodeFailure{tooLarge(maxBytes)};
      bytes.resize(std::min(bytes.size() * 2, maxBytes + 1));
    }
    const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0) {
      if (errno == EINTR) continue;
      return DecodeFailure{"cannot read " + path.string() + ": " + std::strerror(errno)};
    }
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace korvo
