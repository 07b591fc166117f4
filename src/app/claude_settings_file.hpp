#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace korvo::claude_settings_file {

// $CLAUDE_CONFIG_DIR/settings.json (default ~/.claude/settings.json); none without a home.
std::optional<std::filesystem::path> location();

// True when Claude's settings file runs korvo claude-statusline; false for every failure.
bool runsKorvo();

// Points Claude's status line at `korvo` (keeping every other key, chaining an earlier command
// and keeping a backup beside the file), or puts back what was there. Returns the line to print;
// throws std::runtime_error with a one-line message when the file cannot be used, which leaves
// it untouched.
std::string install(const std::filesystem::path& korvo);
std::string uninstall();

}  // namespace korvo::claude_settings_file
