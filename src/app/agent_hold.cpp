#include "app/agent_hold.hpp"

#include "base/text.hpp"

namespace korvo {

std::string_view agentName(Agent agent) {
  return agent == Agent::codex ? "Codex" : "Claude Code";
}

std::string agentsWorkingText(const std::vector<Agent>& agents) {
  return joined(agents, _(" and "), agentName) +
         (agents.size() == 1 ? _(" is working") : _(" are working"));
}

std::string agentsQuietText(const std::vector<Agent>& agents) {
  return joined(agents, _(" and "), agentName) +
         (agents.size() == 1 ? _(" is quiet") : _(" are quiet"));
}

}  // namespace korvo
