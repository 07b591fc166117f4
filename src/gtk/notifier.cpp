#include "gtk/notifier.hpp"

#include <memory>

#include "shared/app_identity.hpp"

namespace korvo::gtk {
namespace {

constexpr const char* server = "org.freedesktop.Notifications";
constexpr const char* serverPath = "/org/freedesktop/Notifications";
// Milliseconds a notification without actions stays up: long enough to read one sentence.
constexpr gint32 transientTimeout = 5000;
// The server's own timeout, for one the user may still want to act on.
constexpr gint32 serverTimeout = -1;

// A notification on its way to the server, until it answers with the notification's id.
struct Sending {
  Notifier* notifier;
  std::vector<Notifier::Action> actions;
};

void onSent(GObject* bus, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<Sending> sending(static_cast<Sending*>(data));
  GError* error = nullptr;
  GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error);
  // Cancelled: the notifier is gone. Any other failure: nothing was shown to act on.
  if (reply == nullptr) {
    g_clear_error(&error);
    return;
  }
  guint32 id = 0;
  g_variant_get(reply, "(u)", &id);
  g_variant_unref(reply);
  sending->notifier->shown(id, std::move(sending->actions));
}

void onSignal(GDBusConnection*, const char*, const char*, const char*, const char* name,
              GVariant* parameters, gpointer notifier) {
  static_cast<Notifier*>(notifier)->signalled(name, parameters);
}

}  // namespace

Notifier::Notifier(GDBusConnection* bus) : bus_(bus), cancellable_(g_cancellable_new()) {
  if (bus_ == nullptr) return;
  subscription_ =
      g_dbus_connection_signal_subscribe(bus_, server, server, nullptr, serverPath, nullptr,
                                         G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
}

Notifier::~Notifier() {
  g_cancellable_cancel(cancellable_);
  g_object_unref(cancellable_);
  if (subscription_ != 0) g_dbus_connection_signal_unsubscribe(bus_, subscription_);
}

void Notifier::send(const std::string& summary, const std::string& body,
                    std::vector<Action> actions) {
  if (bus_ == nullptr) return;
  const std::string icon(AppIdentity::applicationIdentifier);
  GVariantBuilder words;
  g_variant_builder_init(&words, G_VARIANT_TYPE("as"));
  for (const Action& action : actions) {
    g_variant_builder_add(&words, "s", action.key.c_str());
    g_variant_builder_add(&words, "s", action.title.c_str());
  }
  GVariantBuilder hints;
  g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
  g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(icon.c_str()));
  if (actions.empty()) {
    g_variant_builder_add(&hints, "{sv}", "transient", g_variant_new_boolean(TRUE));
  }
  const gint32 timeout = actions.empty() ? transientTimeout : serverTimeout;
  g_dbus_connection_call(bus_, server, serverPath, server, "Notify",
                         g_variant_new("(susssasa{sv}i)", "Korvo", 0U, icon.c_str(),
                                       summary.c_str(), body.c_str(), &words, &hints, timeout),
                         G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable_, onSent,
                         new Sending{this, std::move(actions)});
}

void Notifier::shown(guint32 id, std::vector<Action> actions) {
  if (!actions.empty()) shown_[id] = std::move(actions);
}

void Notifier::signalled(const std::string& name, GVariant* parameters) {
  if (name == "ActionInvoked" && g_variant_is_of_type(parameters, G_VARIANT_TYPE("(us)"))) {
    guint32 id = 0;
    const char* key = nullptr;
    g_variant_get(parameters, "(u&s)", &id, &key);
    const auto found = shown_.find(id);
    if (found == shown_.end()) return;
    // The action may send another notification: the list is copied before it runs.
    const auto actions = found->second;
    for (const Action& action : actions) {
      if (action.key == key) action.invoked();
    }
  } else if (name == "NotificationClosed" &&
             g_variant_is_of_type(parameters, G_VARIANT_TYPE("(uu)"))) {
    guint32 id = 0;
    guint32 reason = 0;
    g_variant_get(parameters, "(uu)", &id, &reason);
    shown_.erase(id);
  }
}

}  // namespace korvo::gtk
