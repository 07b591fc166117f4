#pragma once

#include <glib.h>

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "app/awake_duration.hpp"
#include "app/awake_session.hpp"
#include "service/inhibitors.hpp"

namespace korvo {

// Keep Awake sessions in the service: the session's end kept in the state file, the inhibitors
// held while it runs, and one timer at its end.
class KeepAwake {
 public:
  // What a command did: its exit status and the line to tell the user (may be empty).
  struct Outcome {
    int exitCode = 0;
    std::string message;
    friend bool operator==(const Outcome&, const Outcome&) = default;
  };

  // `changed` runs whenever a session starts, moves its end or ends, `ended` when a session
  // runs out by itself; warnings go to `log`. `clockRate` is how many times as fast as real time
  // the clock runs (tests speed it up); `sessionBus` is the desktop session's bus, or nullptr.
  KeepAwake(std::ostream& log, double clockRate, GDBusConnection* sessionBus,
            std::function<void()> changed, std::function<void()> ended);
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
  void end(bool ranOut);
  void armTimer();
  void keep();
  static gboolean onTimer(gpointer self);

  std::ostream& log_;
  double clockRate_;
  std::function<void()> changed_;
  std::function<void()> ended_;
  Inhibitors inhibitors_;
  std::optional<AwakeSession> session_;
  guint timer_ = 0;
};

}  // namespace korvo
