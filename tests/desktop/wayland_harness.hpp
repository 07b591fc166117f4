#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/desktop_harness.hpp"

// Wayland compositors for tests that run the desktop host for real: headless sway (layer-shell)
// and headless weston (none, with XWayland). Compositors refuse to run as root, and CI runs as
// root, so each compositor and every client of it runs as the unprivileged user `nobody`.
namespace korvo::desktop_test {

// `arguments` run as the test user, with the environment they are given.
std::vector<std::string> asTestUser(std::vector<std::string> arguments);
// Gives `path` and everything in it to the test user (the folders a client writes into).
void handToTestUser(const std::filesystem::path& path);

struct SwayOutput {
  std::string name;  // "HEADLESS-1"
  int x = 0;         // layout position and size, logical pixels
  int y = 0;
  int width = 0;
  int height = 0;
  double scale = 1;
  bool active = false;
};

struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

// Headless sway with outputs of the given logical size and scale, the pixman renderer and a
// private runtime folder, plus a virtual pointer so `seat - cursor` clicks reach clients. With more
// than one output, sway runs nested in a headless sway (at scale 1): sway 1.7 can neither remove
// nor switch off a headless output, and a nested one goes when its window closes.
class Sway {
 public:
  Sway(int width, int height, double scale, const std::filesystem::path& folder, int outputs = 1);
  ~Sway();
  Sway(const Sway&) = delete;
  Sway& operator=(const Sway&) = delete;

  // Empty when sway started; else why it could not.
  const std::string& failure() const { return failure_; }
  // Empty when the test's virtual pointer holds the seat; else why not (a fault of the test's
  // own tools, not of the machine).
  const std::string& pointerFailure() const { return pointerFailure_; }
  // What a client of this compositor needs besides its own variables.
  Environment environment(Environment base) const;
  // One `swaymsg` command; its standard output.
  CommandResult message(const std::vector<std::string>& arguments) const;
  std::vector<SwayOutput> outputs() const;
  // The whole layout (or one output) as a PNG, at the largest output scale.
  void screenshot(const std::filesystem::path& file,
                  const std::optional<std::string>& output = std::nullopt) const;
  // Unplugs a nested output ("WL-2"); false when it cannot.
  bool unplug(const std::string& output) const;
  // Moves the cursor to (x, y) in layout coordinates and clicks the primary button.
  void click(int x, int y) const;
  // Presses the primary button at (x, y) in layout coordinates, moves by (dx, dy) in `steps`
  // equal moves of a virtual mouse, and releases it.
  void drag(int x, int y, int dx, int dy, int steps) const;
  std::string log() const;

 private:
  std::filesystem::path folder_;
  std::filesystem::path runtime_;
  std::string socket_;
  std::string ipc_;
  std::string failure_;
  std::string pointerFailure_;
  std::unique_ptr<Process> outer_;
  std::string outerIpc_;
  std::unique_ptr<Process> sway_;
  std::unique_ptr<Process> pointer_;
};

// The box of what differs from the colour at the corner of `area` within it, in picture pixels;
// nothing when all of it is that colour.
std::optional<PixelRect> paintedBounds(const std::filesystem::path& picture, PixelRect area);
// `area` of `picture` as a picture of its own.
void crop(const std::filesystem::path& picture, PixelRect area, const std::filesystem::path& file);
// How many pixels of two equally large pictures differ by more than `fuzzPercent`.
long differingPixels(const std::filesystem::path& first, const std::filesystem::path& second,
                     int fuzzPercent);

// Headless weston, which offers no layer-shell, with XWayland or without.
class Weston {
 public:
  Weston(bool xwayland, const std::filesystem::path& folder);
  ~Weston();
  Weston(const Weston&) = delete;
  Weston& operator=(const Weston&) = delete;

  const std::string& failure() const { return failure_; }
  // The Wayland socket and, with XWayland, DISPLAY.
  Environment environment(Environment base) const;
  const std::string& xDisplay() const { return xDisplay_; }

 private:
  std::filesystem::path runtime_;
  std::string socket_ = "wayland-korvo";
  std::string xDisplay_;
  std::string failure_;
  std::unique_ptr<Process> weston_;
};

// GNOME's compositor, headless on a virtual monitor, with its own session bus; it offers no
// layer-shell and starts XWayland for X clients.
class Mutter {
 public:
  explicit Mutter(const std::filesystem::path& folder);
  ~Mutter();
  Mutter(const Mutter&) = delete;
  Mutter& operator=(const Mutter&) = delete;

  const std::string& failure() const { return failure_; }
  // The Wayland socket, the session bus, DISPLAY and XAUTHORITY.
  Environment environment(Environment base) const;

 private:
  std::filesystem::path runtime_;
  std::string socket_ = "wayland-korvo";
  std::string xDisplay_;
  std::string xAuthority_;
  std::string failure_;
  std::unique_ptr<Process> bus_;
  std::unique_ptr<Process> mutter_;
};

}  // namespace korvo::desktop_test
