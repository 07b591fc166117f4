#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// Writing files the user owns (their settings), which may be symbolic links into a dotfiles
// folder or made read-only on purpose.
namespace korvo::user_file {

// Why the file `path` may not be replaced ("it is read-only"); none when it may.
std::optional<std::string> refusal(const std::filesystem::path& path);

// Replaces the file `path` with `bytes` in one step, in place of its target: a symbolic link
// stays a link and the file it leads to gets the bytes and keeps its permissions (`mode` when
// there is no file yet). A file that is read-only, or not writable by this user, is refused.
// The reason when nothing was written ("it is read-only"); the file is then as it was.
std::optional<std::string> replace(const std::filesystem::path& path, std::string_view bytes,
                                   mode_t mode);

}  // namespace korvo::user_file
