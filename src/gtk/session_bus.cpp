#include "gtk/session_bus.hpp"

#include <gio/gio.h>

#include <cstdlib>
#include <filesystem>

namespace korvo::gtk {
namespace {

bool sessionBusAdvertised() {
  if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address) {
    return true;
  }
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  std::error_code ignored;
  return runtime != nullptr && *runtime != '\0' &&
         std::filesystem::is_socket(std::filesystem::path(runtime) / "bus", ignored);
}

}  // namespace

GDBusConnection* sessionBus() {
  static GDBusConnection* const connection = []() -> GDBusConnection* {
    if (!sessionBusAdvertised()) return nullptr;
    GError* error = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    g_clear_error(&error);
    return bus;
  }();
  return connection;
}

}  // namespace korvo::gtk
