#include "service/inhibitors.hpp"

#include <gio/gio.h>
#include <gio/gunixfdlist.h>
#include <unistd.h>

#include <utility>

namespace korvo {
namespace {

// A bus that does not answer within this many milliseconds is taken as absent.
constexpr int callTimeout = 5000;
// org.gnome.SessionManager's inhibit flags: 4 suspending, 8 the session being marked idle.
constexpr guint32 gnomeInhibitSuspendAndIdle = 4 | 8;

std::string faultOf(GError* error, const char* fallback) {
  std::string text = error != nullptr ? error->message : fallback;
  g_clear_error(&error);
  return text;
}

// The system bus on a connection of its own: GIO's shared one ends the process when the bus
// goes away, and a missing system bus must only cost the logind inhibitor.
GDBusConnection* connectSystemBus(std::string& fault) {
  GError* error = nullptr;
  gchar* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, &error);
  if (address == nullptr) {
    fault = faultOf(error, "no system bus");
    return nullptr;
  }
  GDBusConnection* bus = g_dbus_connection_new_for_address_sync(
      address,
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, &error);
  g_free(address);
  if (bus == nullptr) {
    fault = faultOf(error, "no system bus");
    return nullptr;
  }
  g_dbus_connection_set_exit_on_close(bus, FALSE);
  return bus;
}

bool nameHasOwner(GDBusConnection* bus, const char* name) {
  GVariant* reply = g_dbus_connection_call_sync(
      bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
      g_variant_new("(s)", name), G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE, callTimeout,
      nullptr, nullptr);
  if (reply == nullptr) return false;
  gboolean owned = FALSE;
  g_variant_get(reply, "(b)", &owned);
  g_variant_unref(reply);
  return owned != FALSE;
}

}  // namespace

Inhibitors::~Inhibitors() {
  release();
  if (systemBus_ != nullptr) g_object_unref(systemBus_);
}

std::vector<Inhibitor> Inhibitors::take(const std::string& reason,
                                        std::vector<std::string>& faults) {
  Held old;
  if (held_.reason != reason) old = std::exchange(held_, Held{});
  held_.reason = reason;
  std::string fault;
  if (held_.logindDescriptor < 0 && !takeLogind(fault)) faults.push_back("logind: " + fault);
  if (!held_.sessionCookie && !takeSession(fault)) faults.push_back("session: " + fault);
  give(old);
  return held();
}

bool Inhibitors::takeLogind(std::string& fault) {
  if (systemBus_ == nullptr || g_dbus_connection_is_closed(systemBus_)) {
    if (systemBus_ != nullptr) g_object_unref(systemBus_);
    systemBus_ = connectSystemBus(fault);
    if (systemBus_ == nullptr) return false;
  }
  GError* error = nullptr;
  GUnixFDList* descriptors = nullptr;
  GVariant* reply = g_dbus_connection_call_with_unix_fd_list_sync(
      systemBus_, "org.freedesktop.login1", "/org/freedesktop/login1",
      "org.freedesktop.login1.Manager", "Inhibit",
      g_variant_new("(ssss)", "idle:sleep", "Korvo", held_.reason.c_str(), "block"),
      G_VARIANT_TYPE("(h)"), G_DBUS_CALL_FLAGS_NONE, callTimeout, nullptr, &descriptors, nullptr,
      &error);
  if (reply == nullptr) {
    fault = faultOf(error, "Inhibit failed");
    return false;
  }
  gint32 index = -1;
  g_variant_get(reply, "(h)", &index);
  g_variant_unref(reply);
  if (descriptors != nullptr) {
    held_.logindDescriptor = g_unix_fd_list_get(descriptors, index, &error);
    g_object_unref(descriptors);
  }
  if (held_.logindDescriptor < 0) {
    fault = faultOf(error, "Inhibit returned no descriptor");
    return false;
  }
  return true;
}

bool Inhibitors::takeSession(std::string& fault) {
  GDBusConnection* bus = sessionBus_;
  if (bus == nullptr) {
    fault = "no session bus";
    return false;
  }
  held_.gnomeSession = nameHasOwner(bus, "org.gnome.SessionManager");
  const char* reason = held_.reason.c_str();
  GError* error = nullptr;
  GVariant* reply =
      held_.gnomeSession
          ? g_dbus_connection_call_sync(
                bus, "org.gnome.SessionManager", "/org/gnome/SessionManager",
                "org.gnome.SessionManager", "Inhibit",
                g_variant_new("(susu)", "Korvo", 0U, reason, gnomeInhibitSuspendAndIdle),
                G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, callTimeout, nullptr, &error)
          : g_dbus_connection_call_sync(
                bus, "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                "org.freedesktop.ScreenSaver", "Inhibit", g_variant_new("(ss)", "Korvo", reason),
                G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, callTimeout, nullptr, &error);
  if (reply == nullptr) {
    fault = faultOf(error, "Inhibit failed");
    return false;
  }
  guint32 cookie = 0;
  g_variant_get(reply, "(u)", &cookie);
  g_variant_unref(reply);
  held_.sessionCookie = cookie;
  return true;
}

void Inhibitors::release() {
  give(held_);
  held_ = Held{};
}

void Inhibitors::give(Held& held) {
  if (held.logindDescriptor >= 0) ::close(held.logindDescriptor);
  held.logindDescriptor = -1;
  if (!held.sessionCookie) return;
  if (GDBusConnection* bus = sessionBus_) {
    GVariant* reply = held.gnomeSession
                          ? g_dbus_connection_call_sync(
                                bus, "org.gnome.SessionManager", "/org/gnome/SessionManager",
                                "org.gnome.SessionManager", "Uninhibit",
                                g_variant_new("(u)", *held.sessionCookie), nullptr,
                                G_DBUS_CALL_FLAGS_NONE, callTimeout, nullptr, nullptr)
                          : g_dbus_connection_call_sync(
                                bus, "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                                "org.freedesktop.ScreenSaver", "UnInhibit",
                                g_variant_new("(u)", *held.sessionCookie), nullptr,
                                G_DBUS_CALL_FLAGS_NONE, callTimeout, nullptr, nullptr);
    if (reply != nullptr) g_variant_unref(reply);
  }
  held.sessionCookie.reset();
}

std::vector<Inhibitor> Inhibitors::held() const {
  std::vector<Inhibitor> list;
  if (held_.logindDescriptor >= 0) list.push_back(Inhibitor::logind);
  if (held_.sessionCookie) list.push_back(Inhibitor::session);
  return list;
}

}  // namespace korvo
