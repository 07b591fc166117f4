#pragma once

#include <filesystem>
#include <string>
#include <vector>

// Whether korvo's service and the desktop widgets start when the user logs in. Both ways a
// session starts programs are set together, so each program starts once whatever the desktop:
// the systemd user units (links in the user's graphical-session.target.wants, as `systemctl
// --user enable` makes them) and the autostart entries (a copy in the user's autostart folder, or
// a `Hidden=true` entry there hiding a system-wide one).
namespace korvo::start_at_login {

// Where the units and entries are looked for and where the user's switches go.
struct Places {
  // $XDG_CONFIG_HOME/systemd/user, the user manager's first folder.
  std::filesystem::path userUnits;
  // The user manager's other folders, which may hold the units and links enabling them for
  // everyone (/etc/systemd/user, a package's /usr/lib/systemd/user, $XDG_DATA_HOME/systemd/user…).
  std::vector<std::filesystem::path> unitFolders;
  std::filesystem::path userAutostart;                 // $XDG_CONFIG_HOME/autostart
  std::vector<std::filesystem::path> systemAutostart;  // $XDG_CONFIG_DIRS/autostart
  std::filesystem::path programs;                      // the folder holding korvo and korvo-widgets
};

// The places of this session: XDG_CONFIG_HOME, XDG_CONFIG_DIRS, XDG_DATA_HOME, XDG_DATA_DIRS and
// HOME as the XDG rules read them, and the prefix `korvo` was installed into. Throws
// std::runtime_error when no configuration folder can be found (no HOME).
Places placesFromEnvironment(const std::filesystem::path& korvo);

// True when each program starts at login by every way installed for it.
bool enabled(const Places& places);

// Turns starting at login on or off for both programs. Throws std::runtime_error with one line
// naming the file that could not be written; what was set before it stays set.
void set(const Places& places, bool on);

}  // namespace korvo::start_at_login
