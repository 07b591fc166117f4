#pragma once

#include <filesystem>
#include <optional>

namespace korvo {

// $KORVO_SYSROOT when set and not empty, else "/": the root under which /sys is read.
std::filesystem::path systemRoot();

// $CODEX_HOME when set to an absolute path, else ~/.codex; none without a home directory.
std::optional<std::filesystem::path> codexHomeDirectory();

// $CLAUDE_CONFIG_DIR when set to an absolute path, else ~/.claude; none without a home directory.
std::optional<std::filesystem::path> claudeConfigDirectory();

// $HOME when it is an absolute path.
std::optional<std::filesystem::path> homeDirectory();

// The environment variable `name` when it holds an absolute path (relative ones are ignored, as
// the XDG rules say for theirs).
std::optional<std::filesystem::path> absolutePathFromEnvironment(const char* name);

}  // namespace korvo
