#include "app/awake_state_line.hpp"

#include "base/date_text.hpp"
#include "base/text.hpp"

namespace korvo {

std::string awakeStateLine(const std::optional<AwakeSession>& session,
                           const std::optional<AgentHold>& agents, bool anyHeld, Date now) {
  if (agents && !anyHeld) {
    return agentsWorkingText(agents->agents) + _(", but this machine cannot be kept awake.");
  }
  const std::string whileAgents =
      agents ? _("while ") + agentsWorkingText(agents->agents) : std::string();
  if (!session) {
    return agents ? _("Keeping this machine awake ") + whileAgents + "."
                  : _("Keep Awake is off: this machine sleeps as usual.");
  }
  std::string line = session->endsAt ? _("Keeping this machine awake until ") +
                                           shortTimeOrDateTime(*session->endsAt, now)
                                     : _("Keeping this machine awake until you stop it");
  if (agents) line += _(", and ") + whileAgents;
  return line + ".";
}

}  // namespace korvo
