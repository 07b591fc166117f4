#include "sources/zstd_line_reader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zstd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace korvo::zstd_lines {
namespace {

struct OpenFile {
  explicit OpenFile(const std::filesystem::path& path)
      : fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (fd >= 0) ::close(fd);
  }
  const int fd;
};

struct ContextFree {
  void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

// Splits decoded bytes into lines, carrying a line that spans buffers.
class LineSplitter {
 public:
  explicit LineSplitter(const std::function<void(std::string_view)>& line) : line_(line) {}

  void feed(const char* bytes, std::size_t size) {
    while (size > 0) {
      const auto* newline = static_cast<const char*>(std::memchr(bytes, '\n', size));
      const std::size_t piece = newline ? static_cast<std::size_t>(newline - bytes) : size;
      if (!oversized_ && pending_.size() + piece <= maxLineBytes) {
        pending_.append(bytes, piece);
      } else {
        oversized_ = true;
        pending_.clear();
      }
      if (newline == nullptr) return;
      if (!oversized_) line_(pending_);
      pending_.clear();
      oversized_ = false;
      bytes += piece + 1;
      size -= piece + 1;
    }
  }

 private:
  const std::function<void(std::string_view)>& line_;
  std::string pending_;
  bool oversized_ = false;
};

}  // namespace

Outcome forEachLine(const std::filesystem::path& path,
                    const std::function<void(std::string_view)>& line) {
  Outcome outcome;
  const OpenFile file(path);
  const int fd = file.fd;
  struct stat status {};
  if (fd < 0 || ::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) return outcome;
  const std::unique_ptr<ZSTD_DCtx, ContextFree> context(ZSTD_createDCtx());
  if (!context ||
      ZSTD_isError(ZSTD_DCtx_setParameter(context.get(), ZSTD_d_windowLogMax, maxWindowLog))) {
    return outcome;
  }
  std::vector<char> in(ZSTD_DStreamInSize());
  std::vector<char> out(ZSTD_DStreamOutSize());
  LineSplitter splitter(line);
  std::uint64_t expanded = 0;
  // Zero once a frame has ended and no further one has begun.
  std::size_t frameRemainder = 1;
  bool sawInput = false;
  for (;;) {
    const ssize_t got = ::read(fd, in.data(), in.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return outcome;
    if (got == 0) break;
    sawInput = true;
    outcome.bytesRead += static_cast<std::uint64_t>(got);
    // Input that never expands (endless skippable frames) is bounded the same way.
    if (outcome.bytesRead > maxExpandedBytes) return outcome;
    ZSTD_inBuffer input{in.data(), static_cast<std::size_t>(got), 0};
    // zstd keeps a frame's last input byte until all of its output is out, so draining the input
    // drains the output too.
    while (input.pos < input.size) {
      ZSTD_outBuffer output{out.data(), out.size(), 0};
      frameRemainder = ZSTD_decompressStream(context.get(), &output, &input);
      if (ZSTD_isError(frameRemainder)) return outcome;
      expanded += output.pos;
      if (expanded > maxExpandedBytes) return outcome;
      splitter.feed(out.data(), output.pos);
    }
  }
  outcome.complete = sawInput && frameRemainder == 0;
  return outcome;
}

}  // namespace korvo::zstd_lines
