#include "app/agent_hold.hpp"

#include "base/text.hpp"

namespace korvo {

std::string_view agentName(Agent agent) {
  return agent == Agent::codex ? "Codex" : "Claude Code";
}

std::string agentsWorkingText(const std::vector<Agent>& agents) {
  if (agents.size() == 1) return std::string(agentName(agents.front())) + _(" is working");
  return joined(agents, _(" and "), agentName) + _(" are working");
}

}  // namespace korvo
