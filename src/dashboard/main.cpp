#include <gio/gio.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <clocale>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "app/host_command.hpp"
#include "base/clock.hpp"
#include "base/command_line_words.hpp"
#include "base/display_text.hpp"
#include "base/exit_codes.hpp"
#include "base/standard_output.hpp"
#include "base/wake_up.hpp"
#include "dashboard/host_application.hpp"
#include "gtk/session_bus.hpp"
#include "shared/app_identity.hpp"

namespace {

using namespace korvo;

// How long a command waits for a service it started to take its name on the bus.
constexpr auto serviceStartLimit = std::chrono::seconds(10);

bool displayGiven() {
  return std::ranges::any_of(std::array{"DISPLAY", "WAYLAND_DISPLAY"}, [](const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0';
  });
}

bool serviceRuns(GDBusConnection* bus) {
  GVariant* reply = g_dbus_connection_call_sync(
      bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
      g_variant_new("(s)", std::string(AppIdentity::applicationIdentifier).c_str()),
      G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  if (reply == nullptr) return false;
  gboolean owned = FALSE;
  g_variant_get(reply, "(b)", &owned);
  g_variant_unref(reply);
  return owned != FALSE;
}

// Keep Awake commands talk to the service; when none runs they start one in the background
// (so the command returns at once) and wait until it answers on the bus.
bool startService(GDBusConnection* bus, const char* self) {
  if (serviceRuns(bus)) return true;
  const char* arguments[] = {self, "service", nullptr};
  GError* error = nullptr;
  if (!g_spawn_async(nullptr, const_cast<char**>(arguments), nullptr,
                     static_cast<GSpawnFlags>(G_SPAWN_STDOUT_TO_DEV_NULL), nullptr, nullptr,
                     nullptr, &error)) {
    std::cerr << "korvo: cannot start the service: " << error->message << '\n';
    g_clear_error(&error);
    return false;
  }
  const auto giveUp = std::chrono::steady_clock::now() + serviceStartLimit;
  while (!serviceRuns(bus)) {
    if (std::chrono::steady_clock::now() > giveUp) {
      std::cerr << "korvo: the service did not start\n";
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

}  // namespace

// korvo's GTK side, which `korvo` hands every command but the file commands: the one instance of
// the session (service, dashboard, Keep Awake, indicator) or a messenger to it.
int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  HostCommand command;
  try {
    command = parseHostCommand({argv, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "korvo: " << displayText(firstLine(error.what())) << '\n';
    return exitUsage;
  }
  const auto warp =
      timeWarpFromEnvironment(std::getenv("KORVO_TIME_OFFSET"), std::getenv("KORVO_TIME_RATE"));
  if (warp.error) {
    std::cerr << "korvo: " << *warp.error << '\n';
    return exitUsage;
  }
  clock::setWarp(warp.warp.offsetSeconds, warp.warp.rate);

  GDBusConnection* bus = gtk::sessionBus();
  if (std::holds_alternative<AwakeCommand>(command)) {
    if (bus == nullptr) {
      std::cerr << "korvo: no session bus, so no korvo service to keep a session\n";
      return exitFailure;
    }
    if (!startService(bus, argv[0])) return exitFailure;
  }
  // Named as its desktop entry: the Wayland app_id and X11 WM_CLASS come from the program name,
  // and desktops match them against the entry for the dashboard's icon and name; screen readers
  // announce the application name.
  g_set_prgname(std::string(AppIdentity::applicationIdentifier).c_str());
  g_set_application_name("Korvo");
  // The dashboard never probes OpenGL (it paints with Cairo); a GDK_GL the user set still wins.
  g_setenv("GDK_GL", "disable", FALSE);
  // A service started without a usable display still publishes and keeps sessions.
  const bool graphical = displayGiven() && (!std::holds_alternative<RunService>(command) ||
                                            gtk_init_check(nullptr, nullptr) != FALSE);
  HostApplication application(graphical, bus != nullptr, warp.warp.rate);
  const int status = application.run(argc, argv);
  // What the command printed (here, or sent back by the service) must have reached its reader.
  if (const auto failure = standardOutputFailure(); failure && status == exitSuccess) {
    std::cerr << "korvo: " << *failure << '\n';
    return exitFailure;
  }
  return status;
}
