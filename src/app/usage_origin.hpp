#pragma once

#include <string>
#include <vector>

#include "app/codex_state_file.hpp"
#include "base/date.hpp"
#include "shared/usage_snapshot.hpp"

// Where the AI figures came from and what else their source said, as the dashboard and
// `korvo codex` tell it.
namespace korvo::usage_origin {

// The source and the figures' age: "Codex app-server · 2 min ago", "Codex CLI session · 3 hr
// ago", "Claude Code status line · 12 min ago".
std::string originText(const UsageSnapshot& snapshot, Date now);

// "unlimited", "none", or the balance ("12.50").
std::string creditsText(const codex_rollout::Credits& credits);

// What korvo's Codex record adds to the published figures, a line each: the plan and credits of
// the reading they came from, each window of the other limits by name, and why the app-server's
// last ask failed.
std::vector<std::string> codexDetails(const codex_state_file::Record& record,
                                      const UsageSnapshot& published);

}  // namespace korvo::usage_origin
