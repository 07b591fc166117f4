#pragma once

#include <glib.h>

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "app/awake_duration.hpp"
#include "app/awake_session.hpp"
#include "app/settings.hpp"
#include "service/agent_watch.hpp"
#include "service/inhibitors.hpp"

namespace korvo {

// Keep Awake in the service: sessions, their end kept in the state file and one timer at it, and
// the automatic hold while Codex or Claude Code works. The inhibitors are held while either
// holds, for the session's reason while one runs.
class KeepAwake {
 public:
  // What a command did: its exit status and the line to tell the user (may be empty).
  struct Outcome {
    int exitCode = 0;
    std::string message;
    bool refused = false;  // neither inhibitor could be taken
    friend bool operator==(const Outcome&, const Outcome&) = default;
  };

  struct Events {
    std::function<void()>
        changed;                   // a session started, moved its end or ended; agents came or went
    std::function<void()> ranOut;  // a session ran out by itself
    // The agents' hold began or let go while no session ran: `agents` are those working as it
    // began, or all that worked while it held.
    std::function<void(bool started, const std::vector<Agent>& agents)> agentsHold;
  };

  // Warnings go to `log`. `clockRate` is how many times as fast as real time the clock runs
  // (tests speed it up); `sessionBus` is the desktop session's bus, or nullptr.
  KeepAwake(std::ostream& log, double clockRate, GDBusConnection* sessionBus, Events events);
  ~KeepAwake();
  KeepAwake(const KeepAwake&) = delete;
  KeepAwake& operator=(const KeepAwake&) = delete;

  // Takes up a session the state file holds when it has time left.
  void resume();
  Outcome start(AwakeDuration duration);
  Outcome extend(AwakeDuration duration);
  Outcome stop();
  // Follows the agents as `settings` say: awakeWhileAgentsWork, agentIdleMinutes, codexHome.
  void watchAgents(const Settings& settings);

  const std::optional<AwakeSession>& session() const { return session_; }
  std::optional<AgentHold> agents() const { return agentWatch_.hold(); }
  std::vector<Inhibitor> held() const { return inhibitors_.held(); }

 private:
  Outcome hold(AwakeSession session);
  void end(bool ranOut);
  void agentsChanged();
  // Holds the inhibitors for the agents while they work, else gives them back.
  void followAgents();
  void armTimer();
  void keep();
  static gboolean onTimer(gpointer self);

  std::ostream& log_;
  double clockRate_;
  Events events_;
  Inhibitors inhibitors_;
  AgentWatch agentWatch_;
  bool agentsHolding_ = false;  // the agents' hold is on while no session runs
  std::vector<Agent> worked_;   // the agents that worked since their hold began, Codex first
  std::string agentFaults_;     // why the agents' hold lacks an inhibitor, as last logged
  std::optional<AwakeSession> session_;
  guint timer_ = 0;
};

}  // namespace korvo
