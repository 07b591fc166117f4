#pragma once

#include <glib.h>

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "app/agent_hold.hpp"
#include "base/date.hpp"
#include "service/folder_tree_watch.hpp"

namespace korvo {

// Whether Codex or Claude Code is working, told by when they last wrote their files: a Codex
// rollout under `sessions/` or a Claude Code transcript (`*.jsonl`) under `projects/`. An agent
// counts as working until it has been quiet for the idle time. File monitors say when a file is
// written and one timer when the next agent falls quiet, so an idle service does not wake.
class AgentWatch {
 public:
  struct Folders {
    std::optional<std::filesystem::path> codexSessions;   // $CODEX_HOME/sessions
    std::optional<std::filesystem::path> claudeProjects;  // $CLAUDE_CONFIG_DIR/projects
    friend bool operator==(const Folders&, const Folders&) = default;
  };

  // `changed` runs when an agent starts or stops counting as working. `clockRate` is how many
  // times as fast as real time the clock runs.
  AgentWatch(double clockRate, std::function<void()> changed);
  ~AgentWatch();
  AgentWatch(const AgentWatch&) = delete;
  AgentWatch& operator=(const AgentWatch&) = delete;

  // Watches `folders` with `idleMinutes` of quiet before an agent counts as done; nothing when
  // not `enabled`. The same as the last call changes nothing.
  void watch(bool enabled, int idleMinutes, const Folders& folders);

  // The agents working now and until when; none while none is.
  std::optional<AgentHold> hold() const;

 private:
  void wrote(Agent agent, double unixSeconds);
  void settle();
  void armTimer();
  static gboolean onTimer(gpointer self);

  double clockRate_;
  std::function<void()> changed_;
  bool enabled_ = false;
  double idleSeconds_ = 0;
  Folders folders_;
  std::array<std::unique_ptr<FolderTreeWatch>, 2> watches_;  // by Agent
  std::array<std::optional<Date>, 2> lastWrites_;            // by Agent, on korvo's clock
  std::optional<AgentHold> shown_;                           // the hold `changed` last told of
  guint timer_ = 0;
};

}  // namespace korvo
