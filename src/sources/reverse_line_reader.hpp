#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

// Reads a regular file's lines from its end towards its start, one chunk at a time, so that the
// last lines of a file of any size cost as much as a small one. The bytes after the last newline
// are a line still being written and are never returned.
class ReverseLineReader {
 public:
  // Bytes read per step from the end.
  static constexpr std::size_t chunkBytes = std::size_t{64} * 1024;
  // Longer lines are passed over unread: no line worth reading is anywhere near this.
  static constexpr std::size_t maxLineBytes = std::size_t{1024} * 1024;

  // A reader of `path`; none when it is not a regular file or cannot be opened (a FIFO or device
  // is refused without blocking).
  static std::optional<ReverseLineReader> open(const std::filesystem::path& path);

  ReverseLineReader(ReverseLineReader&& other) noexcept;
  ReverseLineReader& operator=(ReverseLineReader&&) = delete;
  ReverseLineReader(const ReverseLineReader&) = delete;
  ReverseLineReader& operator=(const ReverseLineReader&) = delete;
  ~ReverseLineReader();

  // The line before the one returned last (without its newline), valid until the next call;
  // none at the start of the file or on a read error.
  std::optional<std::string_view> previous();

  // Bytes read from the file so far.
  std::uint64_t bytesRead() const { return bytesRead_; }

 private:
  ReverseLineReader(int fd, off_t size);
  bool loadChunk();

  int fd_;
  off_t chunkStart_;         // file offset of chunk_[0]
  std::vector<char> chunk_;  // the bytes of the current chunk
  std::size_t cursor_ = 0;   // chunk_[0, cursor_) is not yet handed out
  std::string joined_;       // a line that spans chunks, in file order
  std::string lineHolder_;   // the spanning line last handed out
  bool oversized_ = false;   // the line being joined is over maxLineBytes
  bool atUnfinishedTail_ = true;
  bool done_ = false;
  std::uint64_t bytesRead_ = 0;
};

}  // namespace korvo
