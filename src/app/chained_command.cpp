#include "app/chained_command.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "app/child_process.hpp"

namespace korvo {
namespace {

using child_process::Descriptor;
using child_process::readableBefore;

// The input as an in-memory file, so the command reads it at its own pace and an unread input
// can never block us.
int inputFile(std::string_view input) {
  const int fd = ::memfd_create("korvo-status-line-input", MFD_CLOEXEC);
  if (fd < 0) return -1;
  std::size_t written = 0;
  while (written < input.size()) {
    const ssize_t done = ::write(fd, input.data() + written, input.size() - written);
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) {
      ::close(fd);
      return -1;
    }
    written += static_cast<std::size_t>(done);
  }
  if (::lseek(fd, 0, SEEK_SET) != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

}  // namespace

std::optional<ChainedOutput> runChained(const std::string& command, std::string_view input,
                                        std::chrono::milliseconds limit) {
  Descriptor in(inputFile(input));
  int pipeEnds[2];
  if (in.get() < 0 || ::pipe2(pipeEnds, O_CLOEXEC) != 0) return std::nullopt;
  Descriptor readEnd(pipeEnds[0]);
  Descriptor writeEnd(pipeEnds[1]);
  const child_process::Child child({{"/bin/sh", "-c", command}, in.get(), writeEnd.get()});
  writeEnd.reset();
  in.reset();
  if (!child.started()) return std::nullopt;

  ChainedOutput output;
  const auto deadline = std::chrono::steady_clock::now() + limit;
  char buffer[4096];
  while (output.finished) {
    if (!readableBefore(readEnd.get(), deadline)) {
      output.finished = false;
      break;
    }
    const ssize_t got = ::read(readEnd.get(), buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    const auto room = maxOutputBytes - output.out.size();
    output.out.append(buffer, std::min(room, static_cast<std::size_t>(got)));
  }
  // A closed output does not tell that the command has ended.
  if (output.finished) output.finished = child.endedBefore(deadline);
  return output;
}

}  // namespace korvo
