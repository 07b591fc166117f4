#include "support/dashboard_environment.hpp"

namespace korvo::dashboard_test {

namespace fs = std::filesystem;

Environment dashboardEnvironment(const fs::path& folder, const std::string& display,
                                 const std::string& busAddress, const fs::path& sysroot) {
  for (const char* name : {"home", "config", "data/applications", "state"}) {
    fs::create_directories(folder / name);
  }
  const std::string programs = fs::path(KORVO_APP_BINARY).parent_path().string();
  return {
      // `Exec=korvo open %u` finds the built korvo first.
      {"PATH", programs + ":/usr/bin:/bin"},
      {"HOME", (folder / "home").string()},
      {"XDG_CONFIG_HOME", (folder / "config").string()},
      {"XDG_DATA_HOME", (folder / "data").string()},
      {"XDG_STATE_HOME", (folder / "state").string()},
      // The system's data for GTK's schemas and icons; the user's mimeapps.list picks the
      // handler whatever else is installed.
      {"XDG_DATA_DIRS", "/usr/local/share:/usr/share"},
      {"DISPLAY", display},
      {"GDK_BACKEND", "x11"},
      {"NO_AT_BRIDGE", "1"},
      {"LANG", "C.UTF-8"},
      {"TZ", "UTC"},
      {"DBUS_SESSION_BUS_ADDRESS", busAddress},
      {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + (folder / "no-bus").string()},
      {"KORVO_BUNDLE_INFO", KORVO_SOURCE_DATA_DIR "/Info.json"},
      {"KORVO_SYSROOT", sysroot.string()},
      {"KORVO_DASHBOARD_DUMP", (folder / "dashboard.json").string()},
  };
}

void registerKorvoAsHandler(const fs::path& folder) {
  desktop_test::writeFile(
      folder / "data/applications/com.tessmoor.Korvo.desktop",
      desktop_test::readFile(KORVO_SOURCE_DATA_DIR "/com.tessmoor.Korvo.desktop"));
  desktop_test::writeFile(
      folder / "config/mimeapps.list",
      "[Default Applications]\nx-scheme-handler/korvo=com.tessmoor.Korvo.desktop\n");
}

}  // namespace korvo::dashboard_test
