#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>

namespace korvo {

// Lines of a zstd-compressed file, decoded streaming: memory stays within a few buffers, one line
// and a bounded decoder window whatever the file holds.
namespace zstd_lines {

// A file that expands past this is abandoned: no rollout comes near it, a zip bomb does.
inline constexpr std::uint64_t maxExpandedBytes = 256ULL * 1024 * 1024;
// Longer lines are passed over: no line worth reading is anywhere near this.
inline constexpr std::size_t maxLineBytes = std::size_t{1024} * 1024;
// Frames asking for a larger decoder window are refused, which bounds the decoder's memory
// (16 MiB; zstd's level 3 uses 2 MiB at most).
inline constexpr int maxWindowLog = 24;

struct Outcome {
  bool complete = false;        // every frame decoded and checked to its end
  std::uint64_t bytesRead = 0;  // compressed bytes read from the file
};

// Hands each complete line of `path` (without its newline) to `line`, in order; the bytes after
// the last newline are a line still being written and are not handed. Not complete when the file
// cannot be opened or is not a regular file, is truncated or corrupt, or expands past
// maxExpandedBytes: what was handed before may then be wrong and is for the caller to drop.
Outcome forEachLine(const std::filesystem::path& path,
                    const std::function<void(std::string_view)>& line);

}  // namespace zstd_lines
}  // namespace korvo
