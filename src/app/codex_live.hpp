#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "sources/codex_rollouts.hpp"

// Asking Codex's app-server for the current limits: rollouts change only while Codex runs a turn,
// while the app-server can say the figures at any time.
namespace korvo::codex_live {

// The whole exchange, from start to the answer.
inline constexpr std::chrono::seconds deadline{10};

// What one ask came to: limits, or a one-line failure; neither when another ask was running.
struct Outcome {
  std::optional<CodexLimits> limits;  // source "Codex app-server", fetchedAt when it answered
  std::optional<std::string> failure;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

// Starts `command app-server` in a process group of its own, speaks JSON-RPC over its standard
// input and output (initialize, initialized, account/rateLimits/read) and ends the group once it
// answered or `limit` passed. When `lockFile` is given, an ask already running under that lock
// (another korvo's) is not doubled: the outcome is then empty.
Outcome ask(const std::string& command, std::chrono::milliseconds limit,
            const std::optional<std::filesystem::path>& lockFile);

}  // namespace korvo::codex_live
