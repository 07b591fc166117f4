#include "service/keep_awake.hpp"

#include <ostream>

#include "app/awake_state_file.hpp"
#include "base/clock.hpp"
#include "base/date_text.hpp"
#include "base/exit_codes.hpp"
#include "base/text.hpp"
#include "base/wake_up.hpp"

namespace korvo {

KeepAwake::KeepAwake(std::ostream& log, double clockRate, GDBusConnection* sessionBus,
                     std::function<void()> changed, std::function<void()> ended)
    : log_(log),
      clockRate_(clockRate),
      changed_(std::move(changed)),
      ended_(std::move(ended)),
      inhibitors_(sessionBus) {}

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
  const auto held = inhibitors_.take(faults);
  if (held.empty()) {
    if (session_) end(false);
    return {exitFailure, _("Cannot keep this machine awake: ") + joined(faults, "; ")};
  }
  // A session the state file does not hold would be lost by a restarted service: not started.
  try {
    awake_state_file::save(session);
  } catch (const std::exception& error) {
    if (!session_) inhibitors_.release();
    return {exitFailure, error.what() + std::string(session_ ? "; the session is unchanged"
                                                             : "; Keep Awake not started")};
  }
  session_ = session;
  armTimer();
  changed_();
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
  inhibitors_.release();
  session_.reset();
  keep();
  changed_();
  if (ranOut) ended_();
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
