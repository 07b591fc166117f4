#pragma once

#include <optional>
#include <string>

#include "app/agent_hold.hpp"
#include "app/awake_session.hpp"
#include "base/date.hpp"

namespace korvo {

// The one line that says what keeps the machine awake at `now`, true in every state: "Keep
// Awake is off: …", "Keeping this machine awake until 3:45 PM, and while Codex is working.",
// "Codex is working, but this machine cannot be kept awake." (`anyHeld`: an inhibitor is held).
std::string awakeStateLine(const std::optional<AwakeSession>& session,
                           const std::optional<AgentHold>& agents, bool anyHeld, Date now);

}  // namespace korvo
