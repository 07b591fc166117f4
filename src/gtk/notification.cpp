#include "gtk/notification.hpp"

#include <gio/gio.h>

#include "gtk/session_bus.hpp"

namespace korvo::gtk {
namespace {

// Milliseconds a notification stays up: long enough to read one sentence.
constexpr gint32 notificationTimeout = 5000;

}  // namespace

void sendNotification(const std::string& summary, const std::string& body,
                      const std::string& application) {
  GDBusConnection* bus = sessionBus();
  if (bus == nullptr) return;
  GVariantBuilder actions;
  g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
  GVariantBuilder hints;
  g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
  g_variant_builder_add(&hints, "{sv}", "transient", g_variant_new_boolean(TRUE));
  g_dbus_connection_call(
      bus, "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
      "org.freedesktop.Notifications", "Notify",
      g_variant_new("(susssasa{sv}i)", application.c_str(), 0U, "", summary.c_str(), body.c_str(),
                    &actions, &hints, notificationTimeout),
      nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
}

}  // namespace korvo::gtk
