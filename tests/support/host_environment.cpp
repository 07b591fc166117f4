#include "support/host_environment.hpp"

namespace korvo::desktop_test {

namespace fs = std::filesystem;

Environment hostEnvironment(const fs::path& folder, const Environment& extra) {
  for (const char* name : {"home", "config", "data", "data-dirs", "dump"}) {
    fs::create_directories(folder / name);
  }
  Environment environment{
      {"PATH", "/usr/bin:/bin"},
      {"HOME", (folder / "home").string()},
      {"XDG_CONFIG_HOME", (folder / "config").string()},
      {"XDG_DATA_HOME", (folder / "data").string()},
      // No system-wide handlers: only what a test registers opens korvo:// URLs.
      {"XDG_DATA_DIRS", (folder / "data-dirs").string()},
      {"LANG", "en_US.UTF-8"},
      {"TZ", "UTC"},
      {"KORVO_BUNDLE_INFO", KORVO_SOURCE_DATA_DIR "/Info.json"},
      {"KORVO_SYSROOT", KORVO_FIXTURES_DIR "/proc/desktop-zram"},
  };
  for (const auto& [name, value] : extra) environment[name] = value;
  return environment;
}

void registerUrlRecorder(const fs::path& folder) {
  std::string entry = readFile(KORVO_HOST_DESKTOP_DIR "/korvo-test-handler.desktop.in");
  entry.replace(entry.find("@RECORDER@"), 10, KORVO_HOST_DESKTOP_DIR "/record-url.sh");
  writeFile(folder / "data" / "applications" / "korvo-test-handler.desktop", entry);
  writeFile(folder / "config" / "mimeapps.list", readFile(KORVO_HOST_DESKTOP_DIR "/mimeapps.list"));
}

}  // namespace korvo::desktop_test
