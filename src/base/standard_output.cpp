#include "base/standard_output.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace korvo {

std::optional<std::string> writeStandardOutput(std::string_view bytes) {
  // The reason is taken as the write fails: a later flush no longer knows it.
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() &&
      std::fflush(stdout) == 0) {
    return std::nullopt;
  }
  return std::string("cannot write standard output: ") +
         (errno != 0 ? std::strerror(errno) : "write error");
}

std::optional<std::string> standardOutputFailure() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return std::nullopt;
  return std::string("cannot write standard output: ") +
         (errno != 0 ? std::strerror(errno) : "write error");
}

}  // namespace korvo
