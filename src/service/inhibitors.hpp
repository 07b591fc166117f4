#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/awake_session.hpp"

// GIO's connection type, declared so that users of this header need not include GIO.
using GDBusConnection = struct _GDBusConnection;

namespace korvo {

// What keeps the machine awake while a session runs: logind's idle:sleep block inhibitor on the
// system bus (held as long as its descriptor stays open) and the session's idle inhibitor
// (org.gnome.SessionManager where that name exists, else org.freedesktop.ScreenSaver).
class Inhibitors {
 public:
  // `sessionBus` is the desktop session's bus (nullptr when there is none); it must outlive this.
  explicit Inhibitors(GDBusConnection* sessionBus) : sessionBus_(sessionBus) {}
  ~Inhibitors();
  Inhibitors(const Inhibitors&) = delete;
  Inhibitors& operator=(const Inhibitors&) = delete;

  // Takes whichever of the two is not yet held and can be had, for `reason` ("Keep Awake
  // session", "Codex is working"); a line for each that could not goes to `faults`. Held for
  // another reason, they are taken anew before the old ones are given back, so the machine is
  // never left unguarded in between. Returns what is held afterwards.
  std::vector<Inhibitor> take(const std::string& reason, std::vector<std::string>& faults);
  // Gives back both: closes logind's descriptor, uninhibits the session's cookie.
  void release();
  std::vector<Inhibitor> held() const;

 private:
  struct Held {
    int logindDescriptor = -1;
    std::optional<std::uint32_t> sessionCookie;
    bool gnomeSession = false;  // the cookie is org.gnome.SessionManager's, not the screen saver's
    std::string reason;
  };

  bool takeLogind(std::string& fault);
  bool takeSession(std::string& fault);
  void give(Held& held);

  GDBusConnection* sessionBus_;
  GDBusConnection* systemBus_ = nullptr;
  Held held_;
};

}  // namespace korvo
