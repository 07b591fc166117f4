#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace korvo {

// Reads the file at `path` into `buffer` with one open and as few reads as it takes, without
// blocking on a FIFO. No value when it cannot be opened or read, or when it fills the buffer
// (nothing the sampler reads is that large, so a full buffer means something else is there).
std::optional<std::string_view> readSmallFile(const char* path, std::span<char> buffer);

// As readSmallFile, but a file larger than the buffer yields its beginning.
std::optional<std::string_view> readFileStart(const char* path, std::span<char> buffer);

}  // namespace korvo
