#include "service/keep_awake.hpp"

#include <algorithm>
#include <ostream>

#include "app/awake_state_file.hpp"
#include "base/clock.hpp"
#include "base/date_text.hpp"
#include "base/exit_codes.hpp"
#include "base/text.hpp"
#include "base/wake_up.hpp"
#include "sources/user_paths.hpp"

namespace korvo {

namespace {

// The reason logind and the session list for a session's inhibitors.
const std::string sessionReason = "Keep Awake session";

}  // namespace

KeepAwake::KeepAwake(std::ostream& log, double clockRate, GDBusConnection* sessionBus,
                     Events events)
    : log_(log),
      clockRate_(clockRate),
      events_(std::move(events)),
      inhibitors_(sessionBus),
      agentWatch_(clockRate, [this] { agentsChanged(); }) {}

KeepAwake::~KeepAwake() {
  if (timer_ != 0) g_source_remove(timer_);
  // The state file stays: a service that is restarted takes the session up again.
}

void KeepAwake::resume() {
  const auto kept = awake_state_file::load(log_);
  if (!kept) return;
  if (!runsAt(*kept, clock::now())) {
    keep();  // over while no service ran: nothing to hold
    return;
  }
  const Outcome outcome = hold(*kept);
  if (!outcome.message.empty()) log_ << "korvo service: " << outcome.message << std::endl;
}

KeepAwake::Outcome KeepAwake::start(AwakeDuration duration) {
  return hold(startedSession(clock::now(), duration));
}

KeepAwake::Outcome KeepAwake::extend(AwakeDuration duration) {
  return hold(extendedSession(session_, clock::now(), duration));
}

KeepAwake::Outcome KeepAwake::stop() {
  if (!session_) return {exitSuccess, _("No Keep Awake session runs.")};
  end(false);
  return {exitSuccess, _("Keep Awake stopped.")};
}

KeepAwake::Outcome KeepAwake::hold(AwakeSession session) {
  std::vector<std::string> faults;
  const auto held = inhibitors_.take(sessionReason, faults);
  if (held.empty()) {
    // Taking them anew gave back what the agents held: they take theirs again.
    if (session_) {
      end(false);
    } else {
      followAgents();
    }
    return {exitFailure, _("Cannot keep this machine awake: ") + joined(faults, "; "), true};
  }
  // A session the state file does not hold would be lost by a restarted service: not started.
  try {
    awake_state_file::save(session);
  } catch (const std::exception& error) {
    if (!session_) followAgents();
    return {exitFailure, error.what() + std::string(session_ ? "; the session is unchanged"
                                                             : "; Keep Awake not started")};
  }
  session_ = session;
  agentsHolding_ = false;  // the session holds now; the agents' hold ends silently beneath it
  armTimer();
  events_.changed();
  std::string message =
      session.endsAt ? _("Keep Awake until ") + shortTimeOrDateTime(*session.endsAt, clock::now())
                     : _("Keep Awake until stopped");
  if (held.size() == 1) {
    message += held.front() == Inhibitor::session
                   ? _(", with the session's idle inhibitor alone (") + joined(faults, "; ") + ")"
                   : _(", with logind's inhibitor alone (") + joined(faults, "; ") + ")";
  }
  return {exitSuccess, message + "."};
}

void KeepAwake::end(bool ranOut) {
  if (timer_ != 0) g_source_remove(timer_);
  timer_ = 0;
  session_.reset();
  keep();
  followAgents();
  // Agents still working hold on from here; the session's end says so, and their end will.
  agentsHolding_ = agents().has_value();
  events_.changed();
  if (ranOut) events_.ranOut();
}

void KeepAwake::watchAgents(const Settings& settings) {
  const auto codexHome =
      settings.codexHome ? std::filesystem::path(*settings.codexHome) : codexHomeDirectory();
  const auto claudeDirectory = claudeConfigDirectory();
  AgentWatch::Folders folders;
  if (codexHome) folders.codexSessions = *codexHome / "sessions";
  if (claudeDirectory) folders.claudeProjects = *claudeDirectory / "projects";
  agentWatch_.watch(settings.awakeWhileAgentsWork, settings.agentIdleMinutes, folders);
}

void KeepAwake::agentsChanged() {
  const auto hold = agents();
  if (hold) {
    for (const Agent agent : hold->agents) {
      if (std::find(worked_.begin(), worked_.end(), agent) == worked_.end())
        worked_.push_back(agent);
    }
    std::sort(worked_.begin(), worked_.end());
  }
  if (!session_) {
    const bool before = agentsHolding_;
    followAgents();
    agentsHolding_ = hold.has_value();
    if (agentsHolding_ != before) events_.agentsHold(agentsHolding_, hold ? hold->agents : worked_);
  }
  if (!hold) worked_.clear();
  events_.changed();
}

void KeepAwake::followAgents() {
  const auto hold = agents();
  if (!hold) {
    inhibitors_.release();
    agentFaults_.clear();
    return;
  }
  std::vector<std::string> faults;
  inhibitors_.take(agentsWorkingText(hold->agents), faults);
  const std::string fault = joined(faults, "; ");
  if (!fault.empty() && fault != agentFaults_) {
    log_ << "korvo service: " << agentsWorkingText(hold->agents)
         << ", but this machine cannot be kept fully awake: " << fault << std::endl;
  }
  agentFaults_ = fault;
}

void KeepAwake::keep() {
  try {
    awake_state_file::save(session_);
  } catch (const std::exception& error) {
    log_ << "korvo service: " << error.what() << std::endl;
  }
}

void KeepAwake::armTimer() {
  if (timer_ != 0) g_source_remove(timer_);
  timer_ = 0;
  if (!session_ || !session_->endsAt) return;
  const Date now = clock::now();
  const auto wait = realMillisecondsUntil(*session_->endsAt, now, clockRate_);
  // Already due: end on the next turn of the loop rather than inside a command.
  timer_ = g_timeout_add(wait.value_or(0), &KeepAwake::onTimer, this);
}

gboolean KeepAwake::onTimer(gpointer self) {
  auto* keepAwake = static_cast<KeepAwake*>(self);
  keepAwake->timer_ = 0;
  if (keepAwake->session_ && !runsAt(*keepAwake->session_, clock::now())) {
    keepAwake->end(true);
  } else {
    keepAwake->armTimer();  // a timer holds less than the longest session
  }
  return G_SOURCE_REMOVE;
}

}  // namespace korvo
