#include "sampling/small_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace korvo {
namespace {

// Bytes read, or -1 on failure; stops at end of file or when the buffer is full.
ssize_t readInto(const char* path, std::span<char> buffer) {
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) return -1;
  std::size_t filled = 0;
  while (filled < buffer.size()) {
    const ssize_t count = ::read(descriptor, buffer.data() + filled, buffer.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      ::close(descriptor);
      return -1;
    }
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  ::close(descriptor);
  return static_cast<ssize_t>(filled);
}

}  // namespace

std::optional<std::string_view> readSmallFile(const char* path, std::span<char> buffer) {
  const ssize_t count = readInto(path, buffer);
  if (count < 0 || static_cast<std::size_t>(count) == buffer.size()) return std::nullopt;
  return std::string_view(buffer.data(), static_cast<std::size_t>(count));
}

std::optional<std::string_view> readFileStart(const char* path, std::span<char> buffer) {
  const ssize_t count = readInto(path, buffer);
  if (count < 0) return std::nullopt;
  return std::string_view(buffer.data(), static_cast<std::size_t>(count));
}

}  // namespace korvo
