#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "shared/decode_result.hpp"

// Claude Code's settings.json as far as its status line goes:
// "statusLine": {"type": "command", "command": "…", "padding": 0}.
namespace korvo::claude_settings {

using Document = nlohmann::ordered_json;

// Claude's settings files larger than this are refused unread.
inline constexpr std::size_t maxBytes = std::size_t{4} * 1024 * 1024;

// The status-line command that runs `korvo` (its path as given): "/usr/bin/korvo
// claude-statusline", followed by `--chain 'CMD'` when an earlier command is kept.
std::string korvoCommand(const std::filesystem::path& korvo,
                         const std::optional<std::string>& chain);

// True when the status line runs `korvo claude-statusline`: its program is the executable
// `korvo` (the same file, whatever it is called or linked as, found on PATH for a bare name), or a
// program named korvo (an install whose executable has moved since).
bool runsKorvo(const Document& settings, const std::filesystem::path& korvo);

// The settings text `bytes` with its status line running `korvo`: only the status line's
// command is changed (an earlier command status line chained) or a status line added, every
// other byte kept as written. Unchanged when it already runs korvo. Fails when the text is not a
// settings document or the status line is there but is not a command.
Decoded<std::string> install(std::string_view bytes, const std::filesystem::path& korvo);

// The settings text `bytes` with the status line as it was before `install`: the one in the
// settings text `backup` (none there: no status line) when there is a backup, else the command
// the korvo line chains, else none. Unchanged when the status line does not run korvo. Undoes
// `install` byte for byte. `bytes` and `backup` must be settings documents.
std::string uninstall(std::string_view bytes, const std::optional<std::string>& backup,
                      const std::filesystem::path& korvo);

// A settings document from bytes: JSON (strictly: no key twice, bounded nesting) whose top level
// is an object; the reason otherwise.
Decoded<Document> parse(std::string_view bytes);

}  // namespace korvo::claude_settings
