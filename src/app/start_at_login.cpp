#include "app/start_at_login.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "app/user_file.hpp"

namespace korvo::start_at_login {
namespace {

namespace fs = std::filesystem;

constexpr const char* wantsFolder = "graphical-session.target.wants";
constexpr mode_t entryMode = 0644;

// What starts one program at login: its user unit and its autostart entry.
struct Program {
  const char* unit;
  const char* entry;
  const char* name;
  const char* comment;
  const char* executable;
  const char* arguments;
  const char* icon;
};

constexpr Program programs[] = {
    {"korvo.service", "com.tessmoor.Korvo.Service.desktop", "Korvo Service",
     "Publish CPU temperature and AI usage for the Korvo widgets and keep Keep Awake sessions",
     "korvo", "service", "com.tessmoor.Korvo"},
    {"korvo-widgets.service", "com.tessmoor.Korvo.Widgets.desktop", "Korvo Widgets",
     "Show the Korvo widgets on the desktop when the session starts", "korvo-widgets", "run",
     "com.tessmoor.Korvo.Widgets"},
};

bool present(const fs::path& path) {
  std::error_code error;
  return fs::exists(fs::symlink_status(path, error));
}

bool masked(const fs::path& path) {
  std::error_code error;
  return fs::is_symlink(fs::symlink_status(path, error)) &&
         fs::read_symlink(path, error) == "/dev/null";
}

fs::path userLink(const Places& places, const Program& program) {
  return places.userUnits / wantsFolder / program.unit;
}

// A link enabling the unit in a folder below the user's, as a package or an administrator
// makes it; only a /dev/null link of the user's can then keep it from starting.
bool wantedElsewhere(const Places& places, const Program& program) {
  return std::ranges::any_of(places.unitFolders, [&](const fs::path& folder) {
    const fs::path link = folder / wantsFolder / program.unit;
    return present(link) && !masked(link);
  });
}

std::optional<fs::path> installedUnit(const Places& places, const Program& program) {
  for (const auto& folder : places.unitFolders) {
    std::error_code error;
    if (fs::is_regular_file(folder / program.unit, error)) return folder / program.unit;
  }
  return std::nullopt;
}

bool unitInstalled(const Places& places, const Program& program) {
  return installedUnit(places, program) || wantedElsewhere(places, program);
}

bool unitWanted(const Places& places, const Program& program) {
  const fs::path link = userLink(places, program);
  if (present(link)) return !masked(link);
  return wantedElsewhere(places, program);
}

std::optional<fs::path> systemEntry(const Places& places, const Program& program) {
  for (const auto& folder : places.systemAutostart) {
    std::error_code error;
    if (fs::is_regular_file(folder / program.entry, error)) return folder / program.entry;
  }
  return std::nullopt;
}

bool hidden(const fs::path& entry) {
  std::ifstream in(entry);
  std::string line;
  while (std::getline(in, line)) {
    if (line == "Hidden=true") return true;
  }
  return false;
}

bool entryShown(const Places& places, const Program& program) {
  const fs::path user = places.userAutostart / program.entry;
  if (present(user)) return !hidden(user);
  return systemEntry(places, program).has_value();
}

// The user's own entry: the program from this installation, or a `Hidden=true` one hiding the
// system-wide entry of the same name.
std::string entryText(const Places& places, const Program& program, bool hide) {
  std::ostringstream text;
  text << "[Desktop Entry]\nType=Application\nName=" << program.name
       << "\nComment=" << program.comment
       << "\nExec=" << (places.programs / program.executable).string() << ' ' << program.arguments
       << "\nIcon=" << program.icon
       << "\nTerminal=false\nNoDisplay=true\n"
       // Where the user manager starts the unit, the session leaves this entry to it.
       << "X-GNOME-HiddenUnderSystemd=true\n";
  if (hide) text << "Hidden=true\n";
  return text.str();
}

[[noreturn]] void cannotWrite(const fs::path& path, const std::string& reason) {
  throw std::runtime_error(path.string() + ": cannot be written: " + reason);
}

void removeIfPresent(const fs::path& path) {
  std::error_code error;
  if (present(path) && !fs::remove(path, error)) cannotWrite(path, error.message());
}

void makeLink(const fs::path& target, const fs::path& path) {
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  if (!error) fs::create_symlink(target, path, error);
  if (error) cannotWrite(path, error.message());
}

void writeEntry(const fs::path& path, const std::string& text) {
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  if (error) cannotWrite(path, error.message());
  if (const auto failure = user_file::replace(path, text, entryMode)) cannotWrite(path, *failure);
}

void setUnit(const Places& places, const Program& program, bool on) {
  const fs::path path = userLink(places, program);
  removeIfPresent(path);
  const bool elsewhere = wantedElsewhere(places, program);
  if (on && !elsewhere) {
    if (const auto unit = installedUnit(places, program)) makeLink(*unit, path);
  }
  if (!on && elsewhere) makeLink("/dev/null", path);
}

void setEntry(const Places& places, const Program& program, bool on) {
  const fs::path path = places.userAutostart / program.entry;
  const bool system = systemEntry(places, program).has_value();
  if (on == system) {
    removeIfPresent(path);
  } else {
    writeEntry(path, entryText(places, program, !on));
  }
}

std::optional<fs::path> absolute(const char* value) {
  if (value == nullptr || *value == '\0' || value[0] != '/') return std::nullopt;
  return fs::path(value);
}

std::vector<fs::path> folders(const char* value, std::string_view fallback) {
  std::vector<fs::path> found;
  std::string_view list = value != nullptr && *value != '\0' ? std::string_view(value) : fallback;
  while (!list.empty()) {
    const auto end = list.find(':');
    const std::string_view one = list.substr(0, end);
    if (!one.empty() && one.front() == '/') found.emplace_back(one);
    list = end == std::string_view::npos ? std::string_view() : list.substr(end + 1);
  }
  return found;
}

}  // namespace

Places placesFromEnvironment(const fs::path& korvo) {
  const auto home = absolute(std::getenv("HOME"));
  auto configHome = absolute(std::getenv("XDG_CONFIG_HOME"));
  auto dataHome = absolute(std::getenv("XDG_DATA_HOME"));
  if (!configHome && home) configHome = *home / ".config";
  if (!dataHome && home) dataHome = *home / ".local/share";
  if (!configHome) {
    throw std::runtime_error("no folder for the user's configuration: set HOME or XDG_CONFIG_HOME");
  }
  Places places;
  places.userUnits = *configHome / "systemd/user";
  places.userAutostart = *configHome / "autostart";
  places.programs = korvo.parent_path();
  const auto configDirs = folders(std::getenv("XDG_CONFIG_DIRS"), "/etc/xdg");
  for (const auto& folder : configDirs) {
    places.unitFolders.push_back(folder / "systemd/user");
    places.systemAutostart.push_back(folder / "autostart");
  }
  places.unitFolders.emplace_back("/etc/systemd/user");
  // The prefix korvo runs from: a home or /opt install keeps its units there.
  const fs::path prefix = places.programs.parent_path();
  places.unitFolders.push_back(prefix / "share/systemd/user");
  places.unitFolders.push_back(prefix / "lib/systemd/user");
  if (dataHome) places.unitFolders.push_back(*dataHome / "systemd/user");
  for (const auto& folder : folders(std::getenv("XDG_DATA_DIRS"), "/usr/local/share:/usr/share")) {
    places.unitFolders.push_back(folder / "systemd/user");
  }
  places.unitFolders.emplace_back("/usr/local/lib/systemd/user");
  places.unitFolders.emplace_back("/usr/lib/systemd/user");
  return places;
}

bool enabled(const Places& places) {
  return std::ranges::all_of(programs, [&](const Program& program) {
    return (!unitInstalled(places, program) || unitWanted(places, program)) &&
           entryShown(places, program);
  });
}

void set(const Places& places, bool on) {
  for (const Program& program : programs) {
    setUnit(places, program, on);
    setEntry(places, program, on);
  }
}

}  // namespace korvo::start_at_login
