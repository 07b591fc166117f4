#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.hpp"

namespace korvo {

// The coding agents whose work keeps the machine awake.
enum class Agent { codex, claudeCode };

// "Codex", "Claude Code": the agent as people and `status --json` name it.
std::string_view agentName(Agent agent);

// Keep Awake's automatic hold: the agents that wrote their files within the idle time.
struct AgentHold {
  std::vector<Agent> agents;  // Codex before Claude Code; never empty
  Date until;                 // when the hold lets go unless one of them writes again

  friend bool operator==(const AgentHold&, const AgentHold&) = default;
};

// "Codex is working", "Codex and Claude Code are working": the reason an inhibitor is held for.
std::string agentsWorkingText(const std::vector<Agent>& agents);
// "Codex is quiet", "Codex and Claude Code are quiet": the end of their hold.
std::string agentsQuietText(const std::vector<Agent>& agents);

}  // namespace korvo
