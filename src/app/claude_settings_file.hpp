#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace korvo::claude_settings_file {

// $CLAUDE_CONFIG_DIR/settings.json (default ~/.claude/settings.json); none without a home.
std::optional<std::filesystem::path> location();

// The korvo the status line runs: this program, or, from korvo's GTK side (korvo-service), the
// korvo beside it or in bin/. Throws std::runtime_error when its own path is unknown.
std::filesystem::path korvoExecutable();

// True when Claude's settings file runs korvo claude-statusline; false for every failure.
bool runsKorvo();

// Points Claude's status line at `korvo` (changing only that in the file's text, chaining an
// earlier command and keeping the file's bytes as a backup beside it), or puts back what was
// there (the backup, removed once that is done). A symbolic link stays one: the file it leads to
// is changed. Returns the line to print; throws std::runtime_error with a one-line message when
// the file cannot be used (not JSON, read-only), which leaves it untouched.
std::string install(const std::filesystem::path& korvo);
std::string uninstall(const std::filesystem::path& korvo);

}  // namespace korvo::claude_settings_file
