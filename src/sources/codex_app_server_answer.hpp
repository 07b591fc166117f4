#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.hpp"
#include "sources/codex_rollouts.hpp"

// The pure half of asking Codex's app-server: the JSON-RPC lines korvo writes, and what one line
// of the server's output says about the rate limits.
namespace korvo::codex_app_server {

// The text shown for the figures' origin.
inline constexpr std::string_view sourceName = "Codex app-server";

// The request ids korvo uses.
inline constexpr std::int64_t initializeId = 1;
inline constexpr std::int64_t rateLimitsId = 2;

// `initialize` (naming korvo and its `version`), the `initialized` notification and
// `account/rateLimits/read`, one JSON object a line.
std::string requestLines(std::string_view version);

// The server's answer to one request.
struct Answer {
  // The limits of an answer that has usable windows: Codex's own (limit id "codex" or none) as
  // the snapshot, fetchedAt `answeredAt`, the others by id.
  std::optional<CodexLimits> limits;
  // The server's error message, one line and short, for an error answer.
  std::optional<std::string> error;
};

// What `line` answers to the request `id`: none for every other line (notifications, answers to
// other requests, garbage). An answer without usable windows has neither limits nor error. Only
// figures, plan, credits and limit names are taken.
std::optional<Answer> readAnswer(std::string_view line, std::int64_t id, Date answeredAt);

}  // namespace korvo::codex_app_server
