#pragma once

#include <gio/gio.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace korvo::gtk {

// Desktop notifications that offer actions, through org.freedesktop.Notifications: each carries
// the application's icon, and an action's function runs when the user picks it (the server's
// ActionInvoked signal for that notification).
class Notifier {
 public:
  struct Action {
    std::string key;    // the server's name for it; "default" is a click on the notification
    std::string title;  // the button's text
    std::function<void()> invoked;
  };

  // `bus` is the session's bus; nullptr sends nothing. It must outlive this.
  explicit Notifier(GDBusConnection* bus);
  ~Notifier();
  Notifier(const Notifier&) = delete;
  Notifier& operator=(const Notifier&) = delete;

  // Without actions the notification is transient: nothing is left to do with it afterwards.
  void send(const std::string& summary, const std::string& body, std::vector<Action> actions = {});

  // The server showed notification `id` with `actions`, or said something of one.
  void shown(guint32 id, std::vector<Action> actions);
  void signalled(const std::string& name, GVariant* parameters);

 private:
  GDBusConnection* bus_;
  GCancellable* cancellable_;
  guint subscription_ = 0;
  std::map<guint32, std::vector<Action>> shown_;  // by the server's id, until closed
};

}  // namespace korvo::gtk
