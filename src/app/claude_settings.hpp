#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "shared/decode_result.hpp"

// Claude Code's settings.json as far as its status line goes:
// "statusLine": {"type": "command", "command": "…", "padding": 0}.
namespace korvo::claude_settings {

using Document = nlohmann::ordered_json;

// Claude's settings files larger than this are refused unread.
inline constexpr std::size_t maxBytes = 4 * 1024 * 1024;

// The status-line command that runs `korvo` (its path as given): "/usr/bin/korvo
// claude-statusline", followed by `--chain 'CMD'` when an earlier command is kept.
std::string korvoCommand(const std::filesystem::path& korvo,
                         const std::optional<std::string>& chain);

// True when the status line runs `korvo claude-statusline` (any path to an executable named
// korvo).
bool runsKorvo(const Document& settings);

// `settings` with its status line running `korvo`, every other key kept, an earlier command
// status line chained. Fails when the status line is there but is not a command.
Decoded<Document> install(Document settings, const std::filesystem::path& korvo);

// `settings` with the status line as it was before `install`: the one in `backup` when there is a
// backup, else the command the korvo line chains, else none.
Document uninstall(Document settings, const std::optional<Document>& backup);

// A settings document from bytes: JSON (strictly: no key twice, bounded nesting) whose top level
// is an object; the reason otherwise.
Decoded<Document> parse(std::string_view bytes);

}  // namespace korvo::claude_settings
