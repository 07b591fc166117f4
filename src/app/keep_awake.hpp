#pragma once

#include <glib.h>

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "app/awake_duration.hpp"
#include "app/awake_session.hpp"
#include "app/inhibitors.hpp"

namespace korvo {

// Keep Awake sessions in the service: the session's end kept in the state file, the inhibitors
// held while it runs, one timer at its end, and a notification when it is over.
class KeepAwake {
 public:
  // What a command did: its exit status and the line to tell the user (may be empty).
  struct Outcome {
    int exitCode = 0;
    std::string message;
    friend bool operator==(const Outcome&, const Outcome&) = default;
  };

  // `changed` runs whenever a session starts, moves its end or ends; warnings go to `log`.
  // `clockRate` is how many times as fast as real time the clock runs (tests speed it up).
  KeepAwake(std::ostream& log, double clockRate, std::function<void()> changed);
  ~KeepAwake();
  KeepAwake(const KeepAwake&) = delete;
  KeepAwake& operator=(const KeepAwake&) = delete;

  // Takes up a session the state file holds when it has time left.
  void resume();
  Outcome start(AwakeDuration duration);
  Outcome extend(AwakeDuration duration);
  Outcome stop();

  const std::optional<AwakeSession>& session() const { return session_; }
  std::vector<Inhibitor> held() const { return inhibitors_.held(); }

 private:
  Outcome hold(AwakeSession session);
  void end(bool notify);
  void armTimer();
  void keep();
  static gboolean onTimer(gpointer self);

  std::ostream& log_;
  double clockRate_;
  std::function<void()> changed_;
  Inhibitors inhibitors_;
  std::optional<AwakeSession> session_;
  guint timer_ = 0;
};

}  // namespace korvo
