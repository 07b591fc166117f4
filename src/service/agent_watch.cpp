#include "service/agent_watch.hpp"

#include <algorithm>

#include "base/clock.hpp"
#include "base/wake_up.hpp"

namespace korvo {
namespace {

constexpr std::array agents{Agent::codex, Agent::claudeCode};

// An agent at work writes a line every second or so. Being told of a file's writes a few times
// in each quiet time is all the hold needs, and every report wakes the service: at most six in
// a quiet time, and never more than one each 10 s.
constexpr double reportsPerQuietTime = 6;
constexpr int longestReportGap = 10000;  // milliseconds

std::size_t indexOf(Agent agent) {
  return agent == Agent::codex ? 0 : 1;
}

bool sameAgents(const std::optional<AgentHold>& one, const std::optional<AgentHold>& other) {
  return one.has_value() == other.has_value() && (!one || one->agents == other->agents);
}

}  // namespace

AgentWatch::AgentWatch(double clockRate, std::function<void()> changed)
    : clockRate_(clockRate), changed_(std::move(changed)) {}

AgentWatch::~AgentWatch() {
  if (timer_ != 0) g_source_remove(timer_);
}

void AgentWatch::watch(bool enabled, int idleMinutes, const Folders& folders) {
  const double idleSeconds = enabled ? idleMinutes * 60.0 : 0;
  if (enabled == enabled_ && idleSeconds == idleSeconds_ && folders == folders_) return;
  enabled_ = enabled;
  idleSeconds_ = idleSeconds;
  folders_ = folders;
  for (auto& watch : watches_) watch.reset();
  lastWrites_ = {};
  if (enabled) {
    const std::array<std::optional<std::filesystem::path>, 2> roots{folders.codexSessions,
                                                                    folders.claudeProjects};
    const int reportGap = std::min(
        longestReportGap, static_cast<int>(idleSeconds * 1000 / clockRate_ / reportsPerQuietTime));
    for (const Agent agent : agents) {
      const auto index = indexOf(agent);
      if (!roots[index]) continue;
      watches_[index] =
          std::make_unique<FolderTreeWatch>(*roots[index], ".jsonl", reportGap,
                                            [this, agent](double moment) { wrote(agent, moment); });
      // An agent that wrote shortly before the watch began is still working.
      if (const auto newest = watches_[index]->newestAtStart()) wrote(agent, *newest);
    }
  }
  settle();
}

void AgentWatch::wrote(Agent agent, double unixSeconds) {
  // Files carry real time; korvo's clock may run faster than it (tests), so the write is placed
  // as far back on that clock as it lies in real time, scaled.
  const double realAge =
      std::max(0.0, static_cast<double>(g_get_real_time()) / G_USEC_PER_SEC - unixSeconds);
  const Date moment = clock::now().addingSeconds(-realAge * clockRate_);
  auto& last = lastWrites_[indexOf(agent)];
  if (last && *last >= moment) return;
  last = moment;
  // A write only moves the end of a hold that already runs: the timer finds the new end when it
  // fires, so writes never rearm it.
  if (!sameAgents(hold(), shown_)) settle();
}

std::optional<AgentHold> AgentWatch::hold() const {
  if (!enabled_) return std::nullopt;
  const Date now = clock::now();
  AgentHold hold;
  for (const Agent agent : agents) {
    const auto& last = lastWrites_[indexOf(agent)];
    if (!last) continue;
    const Date until = last->addingSeconds(idleSeconds_);
    if (until <= now) continue;
    hold.agents.push_back(agent);
    hold.until = hold.agents.size() == 1 ? until : std::max(hold.until, until);
  }
  if (hold.agents.empty()) return std::nullopt;
  return hold;
}

void AgentWatch::settle() {
  auto now = hold();
  armTimer();
  const bool same = sameAgents(now, shown_);
  shown_ = std::move(now);
  if (!same) changed_();
}

void AgentWatch::armTimer() {
  if (timer_ != 0) g_source_remove(timer_);
  timer_ = 0;
  if (!enabled_) return;
  // The next moment an agent falls quiet, unless it writes again before.
  std::optional<Date> next;
  const Date now = clock::now();
  for (const auto& last : lastWrites_) {
    if (!last) continue;
    const Date until = last->addingSeconds(idleSeconds_);
    if (until > now && (!next || until < *next)) next = until;
  }
  if (!next) return;
  timer_ = g_timeout_add(realMillisecondsUntil(*next, now, clockRate_).value_or(0),
                         &AgentWatch::onTimer, this);
}

gboolean AgentWatch::onTimer(gpointer self) {
  auto* watch = static_cast<AgentWatch*>(self);
  watch->timer_ = 0;
  watch->settle();
  return G_SOURCE_REMOVE;
}

}  // namespace korvo
