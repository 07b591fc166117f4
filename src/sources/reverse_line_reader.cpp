#include "sources/reverse_line_reader.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace korvo {

std::optional<ReverseLineReader> ReverseLineReader::open(const std::filesystem::path& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  struct stat status {};
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
    ::close(fd);
    return std::nullopt;
  }
  return ReverseLineReader(fd, status.st_size);
}

ReverseLineReader::ReverseLineReader(int fd, off_t size) : fd_(fd), chunkStart_(size) {}

ReverseLineReader::ReverseLineReader(ReverseLineReader&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)),
      chunkStart_(other.chunkStart_),
      chunk_(std::move(other.chunk_)),
      cursor_(other.cursor_),
      joined_(std::move(other.joined_)),
      lineHolder_(std::move(other.lineHolder_)),
      oversized_(other.oversized_),
      atUnfinishedTail_(other.atUnfinishedTail_),
      done_(other.done_),
      bytesRead_(other.bytesRead_) {}

ReverseLineReader::~ReverseLineReader() {
  if (fd_ >= 0) ::close(fd_);
}

bool ReverseLineReader::loadChunk() {
  const auto length =
      static_cast<std::size_t>(std::min<off_t>(chunkStart_, static_cast<off_t>(chunkBytes)));
  chunkStart_ -= static_cast<off_t>(length);
  chunk_.resize(length);
  std::size_t filled = 0;
  while (filled < length) {
    const ssize_t got = ::pread(fd_, chunk_.data() + filled, length - filled,
                                chunkStart_ + static_cast<off_t>(filled));
    if (got < 0 && errno == EINTR) continue;
    // A file that shrank or failed under us ends the reading.
    if (got <= 0) return false;
    filled += static_cast<std::size_t>(got);
    bytesRead_ += static_cast<std::uint64_t>(got);
  }
  cursor_ = length;
  return true;
}

std::optional<std::string_view> ReverseLineReader::previous() {
  while (!done_) {
    if (cursor_ == 0) {
      if (chunkStart_ == 0 || !loadChunk()) {
        // The file's first line ends where the reading began.
        done_ = true;
        if (atUnfinishedTail_ || oversized_) return std::nullopt;
        return std::string_view(joined_);
      }
    }
    const char* begin = chunk_.data();
    const char* newline = static_cast<const char*>(::memrchr(begin, '\n', cursor_));
    if (newline == nullptr) {
      // The line goes on in the chunk before: keep this part and read on.
      if (!oversized_ && joined_.size() + cursor_ <= maxLineBytes) {
        joined_.insert(0, begin, cursor_);
      } else {
        oversized_ = true;
        joined_.clear();
      }
      cursor_ = 0;
      continue;
    }
    const std::size_t start = static_cast<std::size_t>(newline - begin) + 1;
    const std::string_view piece(begin + start, cursor_ - start);
    cursor_ = start - 1;
    // Both flags end at this newline: an unfinished tail that was also too long must not leave
    // `oversized_` set for the complete line before it.
    const bool unfinished = std::exchange(atUnfinishedTail_, false);
    const bool tooLong = std::exchange(oversized_, false);
    const bool skip = unfinished || tooLong;
    if (joined_.empty()) {
      if (skip) continue;
      return piece;
    }
    if (skip || joined_.size() + piece.size() > maxLineBytes) {
      joined_.clear();
      continue;
    }
    joined_.insert(0, piece);
    lineHolder_ = std::move(joined_);
    joined_.clear();
    return std::string_view(lineHolder_);
  }
  return std::nullopt;
}

}  // namespace korvo
