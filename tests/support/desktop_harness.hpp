#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/files.hpp"
#include "support/temporary_directory.hpp"

// Processes, an X server and a few X tools for tests that run the desktop host for real. Every
// process a test starts is stopped (its whole process group) when its handle goes away, also
// when an assertion fails.
namespace korvo::desktop_test {

// The shared helpers, under the names the desktop tests have always used.
using testing_support::readFile;
using testing_support::TemporaryDirectory;
using testing_support::writeFile;

using Environment = std::map<std::string, std::string>;

// A child process in its own process group, its output in files.
class Process {
 public:
  Process(const std::vector<std::string>& arguments, const Environment& environment,
          const std::filesystem::path& standardOutput, const std::filesystem::path& standardError,
          std::optional<int> inheritedDescriptor = std::nullopt);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t pid() const { return pid_; }
  bool running();
  void signal(int number) const;
  // SIGTERM to the group, then SIGKILL if it lingers; reaps the child.
  void stop();

 private:
  pid_t pid_ = -1;
  bool exited_ = false;
};

struct CommandResult {
  int exitStatus = -1;
  std::string output;  // standard output
};

// Runs a command to its end (killed after a minute) and returns its standard output.
CommandResult runCommand(const std::vector<std::string>& arguments, const Environment& environment);

// Polls `condition` every 50 ms until it holds or `limit` has passed; returns whether it held.
bool waitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds limit = std::chrono::seconds(30));

// An Xvfb server on a display number it picks itself (-displayfd). With a `cookie` (32 hex
// digits) it admits only clients holding it, as a display manager's server does: clients find
// the cookie in the authority file authority(), named in their XAUTHORITY.
class XServer {
 public:
  XServer(int width, int height, const std::filesystem::path& logFolder,
          std::optional<std::string> cookie = std::nullopt);
  const std::string& display() const { return display_; }
  const std::filesystem::path& authority() const { return authority_; }

 private:
  std::unique_ptr<Process> process_;
  std::string display_;
  std::filesystem::path authority_;
};

// Makes `cookie` the one the authority file `file` holds for `display` (xauth).
void setXCookie(const std::filesystem::path& file, const std::string& display,
                const std::string& cookie);

// A session bus of the test's own (dbus-run-session) whose D-Bus activation starts services
// from the system's files, the accessibility bus among them, as on a desktop. `folder` holds its
// home and logs.
class ActivatingSessionBus {
 public:
  ActivatingSessionBus(const std::filesystem::path& folder, const std::string& display);
  const std::string& address() const { return address_; }

 private:
  std::unique_ptr<Process> process_;
  std::string address_;
};

struct WindowGeometry {
  int x = 0;       // pixels, absolute
  int y = 0;       // pixels, absolute
  int width = 0;   // pixels
  int height = 0;  // pixels
};

// Mapped windows whose title matches `titlePattern` (xdotool's regular expression).
std::vector<std::string> visibleWindows(const std::string& display,
                                        const std::string& titlePattern);
std::optional<WindowGeometry> windowGeometry(const std::string& display, const std::string& id);
// Moves the pointer to (x, y) and clicks the primary button.
void click(const std::string& display, int x, int y);
// Moves the pointer to (x, y) and clicks the secondary button.
void rightClick(const std::string& display, int x, int y);
// Types one key by its X name ("m", "Return", "Menu") into the window that has the keyboard.
void pressKey(const std::string& display, const std::string& key);
// Saves the whole screen as a PNG.
void screenshot(const std::string& display, const std::filesystem::path& file);
// The colour of one pixel of a picture as "RRGGBB".
std::string pixel(const std::filesystem::path& picture, int x, int y);

}  // namespace korvo::desktop_test
