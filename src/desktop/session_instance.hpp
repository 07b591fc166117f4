#pragma once

#include <functional>
#include <optional>
#include <string>

// GIO's connection type, declared so that users of this header need not include GIO.
using GDBusConnection = struct _GDBusConnection;

namespace korvo::desktop {

// One desktop host per session. The host owns the name com.tessmoor.Korvo.Widgets on the session
// bus and allows it to be replaced: a second host finds the name taken and leaves, unless it was
// started with --replace, which takes the name; the first host, told it lost the name, quits.
// The owner answers the method Reload on /com/tessmoor/Korvo/Widgets and records its process for
// `korvo-widgets reload`. Without a session bus every host runs on its own.
class SessionInstance {
 public:
  enum class Claim {
    owned,  // this host is the session's
    taken,  // another host runs and keeps running
    noBus,  // no session bus: nothing to coordinate with
  };

  // Claims the name, waiting for the bus's answer. `lost` runs when another host takes over,
  // `reload` when asked to reload.
  SessionInstance(bool replace, std::function<void()> lost, std::function<void()> reload);
  ~SessionInstance();
  SessionInstance(const SessionInstance&) = delete;
  SessionInstance& operator=(const SessionInstance&) = delete;

  Claim claim() const { return claim_; }
  // The process that owns the name, when it is another host.
  std::optional<unsigned> ownerProcess() const { return ownerProcess_; }

  void nameLost();
  void reloadRequested();

 private:
  Claim claim_ = Claim::noBus;
  std::optional<unsigned> ownerProcess_;
  std::function<void()> lost_;
  std::function<void()> reload_;
  GDBusConnection* bus_ = nullptr;
  unsigned lostSubscription_ = 0;
  unsigned registration_ = 0;
};

}  // namespace korvo::desktop
