#include "desktop/wayland_harness.hpp"

#include <pwd.h>
#include <unistd.h>

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* testUser = "nobody";

int parseInt(std::string_view text) {
  int value = -1;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::optional<std::string> fileStartingWith(const fs::path& folder, const std::string& prefix) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    const auto name = entry.path().filename().string();
    if (name.starts_with(prefix) && !name.ends_with(".lock")) return name;
  }
  return std::nullopt;
}

}  // namespace

std::vector<std::string> asTestUser(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"/usr/sbin/runuser", "-p", "-u", testUser, "--"});
  return arguments;
}

void handToTestUser(const fs::path& path) {
  const passwd* user = getpwnam(testUser);
  if (user == nullptr) throw std::runtime_error("no user nobody");
  const auto give = [&](const fs::path& one) {
    if (lchown(one.c_str(), user->pw_uid, user->pw_gid) != 0) {
      throw std::runtime_error("cannot hand " + one.string() + " to nobody");
    }
  };
  give(path);
  if (fs::is_directory(path)) {
    for (const auto& entry : fs::recursive_directory_iterator(path)) give(entry.path());
  }
}

namespace {

// A sway of its own in `runtime`, configured by `config`; its socket and IPC path, once both are
// there.
struct SwayStart {
  std::unique_ptr<Process> process;
  std::string socket;
  std::string ipc;
};

SwayStart startSway(const fs::path& runtime, const fs::path& config, const std::string& text,
                    Environment environment, const fs::path& log) {
  fs::create_directories(runtime);
  fs::permissions(runtime, fs::perms::owner_all);
  handToTestUser(runtime);
  writeFile(config, text);
  fs::permissions(config, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read |
                              fs::perms::others_read);
  environment["PATH"] = "/usr/bin:/bin";
  environment["HOME"] = runtime.string();
  environment["XDG_RUNTIME_DIR"] = runtime.string();
  environment["WLR_RENDERER"] = "pixman";
  environment["WLR_LIBINPUT_NO_DEVICES"] = "1";
  SwayStart start;
  start.process = std::make_unique<Process>(asTestUser({"sway", "-c", config.string()}),
                                            environment, log.string() + ".out", log);
  waitFor(
      [&] {
        const auto socket = fileStartingWith(runtime, "wayland-");
        const auto ipc = fileStartingWith(runtime, "sway-ipc.");
        if (socket) start.socket = *socket;
        if (ipc) start.ipc = (runtime / *ipc).string();
        return (socket && ipc) || !start.process->running();
      },
      20s);
  return start;
}

}  // namespace

Sway::Sway(int width, int height, double scale, const fs::path& folder, int outputs)
    : folder_(folder), runtime_(folder / "runtime") {
  // The test user must reach its runtime folder, its configuration and the host's files.
  fs::permissions(folder_, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                               fs::perms::others_read | fs::perms::others_exec);
  // The mode is in the output's pixels: the layout keeps `width` x `height` at any scale.
  const auto pixels = [scale](int length) { return std::to_string(std::lround(length * scale)); };
  const std::string common = "default_border none\nfocus_follows_mouse no\nxwayland disable\n";
  SwayStart start;
  if (outputs == 1) {
    start = startSway(runtime_, folder_ / "sway.conf",
                      "output HEADLESS-1 mode " + pixels(width) + "x" + pixels(height) +
                          " position 0 0 scale " + std::to_string(scale) + "\n" + common,
                      {{"WLR_BACKENDS", "headless"}}, folder_ / "sway.err");
  } else {
    // Outputs that can be unplugged: sway nested in a headless sway, one window of the outer per
    // output of the inner, tiled side by side so each is `width` x `height`. Closing a window
    // unplugs its output.
    const auto outerRuntime = folder_ / "outer-runtime";
    auto outer = startSway(outerRuntime, folder_ / "outer.conf",
                           "output HEADLESS-1 mode " + std::to_string(width * outputs) + "x" +
                               std::to_string(height) + "\n" + common,
                           {{"WLR_BACKENDS", "headless"}}, folder_ / "outer.err");
    if (outer.socket.empty() || outer.ipc.empty()) {
      failure_ = "sway did not start: " + readFile(folder_ / "outer.err");
      return;
    }
    outer_ = std::move(outer.process);
    outerIpc_ = outer.ipc;
    start = startSway(runtime_, folder_ / "sway.conf", common,
                      {{"WLR_BACKENDS", "wayland"},
                       {"WLR_WL_OUTPUTS", std::to_string(outputs)},
                       {"WAYLAND_DISPLAY", (outerRuntime / outer.socket).string()}},
                      folder_ / "sway.err");
  }
  sway_ = std::move(start.process);
  socket_ = start.socket;
  ipc_ = start.ipc;
  if (socket_.empty() || ipc_.empty()) {
    failure_ = "sway did not start: " + readFile(folder_ / "sway.err");
    return;
  }
  pointer_ = std::make_unique<Process>(asTestUser({KORVO_VIRTUAL_POINTER}),
                                       this->environment({{"PATH", "/usr/bin:/bin"}}),
                                       folder_ / "pointer.out", folder_ / "pointer.err");
  if (!waitFor([&] { return readFile(folder_ / "pointer.out") == "ready\n"; }, 10s)) {
    pointerFailure_ = "no virtual pointer: " + readFile(folder_ / "pointer.err");
  }
  // The pointer is drawn into the screenshots: out of the way, in the bottom-right corner.
  message({"seat", "-", "cursor", "set", std::to_string(width - 1), std::to_string(height - 1)});
}

bool Sway::unplug(const std::string& output) const {
  if (!outer_) return false;
  const auto result =
      runCommand(asTestUser({"swaymsg", "[title=\"wlroots - " + output + "\"]", "kill"}),
                 {{"PATH", "/usr/bin:/bin"}, {"SWAYSOCK", outerIpc_}});
  return result.exitStatus == 0;
}

Sway::~Sway() {
  pointer_.reset();
  sway_.reset();
  outer_.reset();
}

Environment Sway::environment(Environment base) const {
  base["XDG_RUNTIME_DIR"] = runtime_.string();
  base["WAYLAND_DISPLAY"] = socket_;
  base["SWAYSOCK"] = ipc_;
  return base;
}

CommandResult Sway::message(const std::vector<std::string>& arguments) const {
  std::vector<std::string> command{"swaymsg"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return runCommand(asTestUser(command), environment({{"PATH", "/usr/bin:/bin"}}));
}

std::vector<SwayOutput> Sway::outputs() const {
  const auto reply = message({"-t", "get_outputs", "-r"});
  const auto document = nlohmann::json::parse(reply.output, nullptr, false);
  std::vector<SwayOutput> result;
  if (!document.is_array()) return result;
  for (const auto& output : document) {
    const auto& rect = output["rect"];
    result.push_back({output["name"].get<std::string>(), rect["x"].get<int>(), rect["y"].get<int>(),
                      rect["width"].get<int>(), rect["height"].get<int>(),
                      output.value("scale", 1.0), output["active"].get<bool>()});
  }
  return result;
}

void Sway::screenshot(const fs::path& file, const std::optional<std::string>& output) const {
  // grim writes as the test user into its runtime folder; the test reads it from there.
  const auto shot = runtime_ / "screenshot.png";
  std::vector<std::string> command{"grim"};
  if (output) command.insert(command.end(), {"-o", *output});
  command.push_back(shot.string());
  runCommand(asTestUser(command), environment({{"PATH", "/usr/bin:/bin"}}));
  std::error_code ignored;
  fs::copy_file(shot, file, fs::copy_options::overwrite_existing, ignored);
}

void Sway::click(int x, int y) const {
  message({"seat", "-", "cursor", "set", std::to_string(x), std::to_string(y)});
  message({"seat", "-", "cursor", "press", "button1"});
  message({"seat", "-", "cursor", "release", "button1"});
}

void Sway::drag(int x, int y, int dx, int dy, int steps) const {
  message({"seat", "-", "cursor", "set", std::to_string(x), std::to_string(y)});
  runCommand(asTestUser({KORVO_VIRTUAL_POINTER, "drag", std::to_string(dx), std::to_string(dy),
                         std::to_string(steps)}),
             environment({{"PATH", "/usr/bin:/bin"}}));
}

std::string Sway::log() const {
  return readFile(folder_ / "sway.err");
}

std::optional<PixelRect> paintedBounds(const fs::path& picture, PixelRect area) {
  const auto crop = std::to_string(area.width) + "x" + std::to_string(area.height) + "+" +
                    std::to_string(area.x) + "+" + std::to_string(area.y);
  // The fuzz passes over the cards' soft shadows (at most 16 % black) but not their edges.
  const auto result = runCommand({"convert", picture.string(), "-crop", crop, "+repage", "-fuzz",
                                  "12%", "-format", "%@", "info:"},
                                 {{"PATH", "/usr/bin:/bin"}});
  // "WxH+X+Y"; ImageMagick trims a uniform picture to a single pixel at -1, -1.
  const auto& text = result.output;
  const auto times = text.find('x');
  const auto plus = text.find('+');
  const auto second = text.find('+', plus + 1);
  if (times == std::string::npos || plus == std::string::npos || second == std::string::npos) {
    return std::nullopt;
  }
  const PixelRect box{parseInt(std::string_view(text).substr(plus + 1, second - plus - 1)),
                      parseInt(std::string_view(text).substr(second + 1)),
                      parseInt(std::string_view(text).substr(0, times)),
                      parseInt(std::string_view(text).substr(times + 1, plus - times - 1))};
  if (box.x < 0 || box.y < 0) return std::nullopt;
  return PixelRect{area.x + box.x, area.y + box.y, box.width, box.height};
}

void crop(const fs::path& picture, PixelRect area, const fs::path& file) {
  const auto geometry = std::to_string(area.width) + "x" + std::to_string(area.height) + "+" +
                        std::to_string(area.x) + "+" + std::to_string(area.y);
  runCommand({"convert", picture.string(), "-crop", geometry, "+repage", file.string()},
             {{"PATH", "/usr/bin:/bin"}});
}

long differingPixels(const fs::path& first, const fs::path& second, int fuzzPercent) {
  // compare prints the count on standard error; send it through the standard output instead.
  const auto result =
      runCommand({"sh", "-c", "compare -metric AE -fuzz \"$1\" \"$2\" \"$3\" null: 2>&1", "compare",
                  std::to_string(fuzzPercent) + "%", first.string(), second.string()},
                 {{"PATH", "/usr/bin:/bin"}});
  long count = -1;
  std::from_chars(result.output.data(), result.output.data() + result.output.size(), count);
  return count;
}

Weston::Weston(bool xwayland, const fs::path& folder) : runtime_(folder / "weston-runtime") {
  fs::create_directories(runtime_);
  fs::permissions(runtime_, fs::perms::owner_all);
  handToTestUser(runtime_);
  const auto log = runtime_ / "weston.log";
  std::vector<std::string> command{"weston",
                                   "--backend=headless-backend.so",
                                   "--use-pixman",
                                   "--width=1280",
                                   "--height=1024",
                                   "--idle-time=0",
                                   "--socket=" + socket_,
                                   "--log=" + log.string()};
  if (xwayland) command.push_back("--xwayland");
  const Environment environment{{"PATH", "/usr/bin:/bin"},
                                {"HOME", runtime_.string()},
                                {"XDG_RUNTIME_DIR", runtime_.string()}};
  weston_ = std::make_unique<Process>(asTestUser(command), environment, folder / "weston.out",
                                      folder / "weston.err");
  const bool ready = waitFor(
      [&] {
        if (!weston_->running()) return true;
        const auto text = readFile(log);
        if (xwayland) {
          const auto at = text.find("xserver listening on display ");
          if (at == std::string::npos) return false;
          const auto start = at + std::string("xserver listening on display ").size();
          xDisplay_ = text.substr(start, text.find_first_of("\n ", start) - start);
        }
        return fs::exists(runtime_ / socket_);
      },
      20s);
  if (!ready || !weston_->running()) {
    failure_ = "weston did not start: " + readFile(log) + readFile(folder / "weston.err");
  }
}

Weston::~Weston() {
  weston_.reset();
}

Environment Weston::environment(Environment base) const {
  base["XDG_RUNTIME_DIR"] = runtime_.string();
  base["WAYLAND_DISPLAY"] = socket_;
  if (!xDisplay_.empty()) base["DISPLAY"] = xDisplay_;
  return base;
}

Mutter::Mutter(const fs::path& folder) : runtime_(folder / "mutter-runtime") {
  fs::create_directories(runtime_);
  fs::permissions(runtime_, fs::perms::owner_all);
  handToTestUser(runtime_);
  const auto bus = runtime_ / "bus";
  const Environment base{{"PATH", "/usr/bin:/bin"},
                         {"HOME", runtime_.string()},
                         {"XDG_RUNTIME_DIR", runtime_.string()},
                         {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + bus.string()}};
  bus_ = std::make_unique<Process>(
      asTestUser({"dbus-daemon", "--session", "--nofork", "--address=unix:path=" + bus.string()}),
      base, folder / "mutter-bus.out", folder / "mutter-bus.err");
  if (!waitFor([&] { return fs::exists(bus); }, 10s)) {
    failure_ = "no session bus for mutter: " + readFile(folder / "mutter-bus.err");
    return;
  }
  const auto log = folder / "mutter.err";
  mutter_ = std::make_unique<Process>(
      asTestUser({"mutter", "--headless", "--wayland", "--virtual-monitor", "1280x1024",
                  "--wayland-display=" + socket_}),
      base, folder / "mutter.out", log);
  const std::string said = "Using public X11 display ";
  waitFor(
      [&] {
        const auto text = readFile(log);
        if (const auto at = text.find(said); at != std::string::npos) {
          const auto start = at + said.size();
          xDisplay_ = text.substr(start, text.find_first_of(", \n", start) - start);
        }
        for (const auto& entry : fs::directory_iterator(runtime_)) {
          if (entry.path().filename().string().starts_with(".mutter-Xwaylandauth")) {
            xAuthority_ = entry.path().string();
          }
        }
        return !mutter_->running() ||
               (!xDisplay_.empty() && !xAuthority_.empty() && fs::exists(runtime_ / socket_));
      },
      30s);
  if (!mutter_->running() || xDisplay_.empty() || xAuthority_.empty()) {
    failure_ = "mutter did not start: " + readFile(log);
  }
}

Mutter::~Mutter() {
  mutter_.reset();
  bus_.reset();
}

Environment Mutter::environment(Environment base) const {
  base["XDG_RUNTIME_DIR"] = runtime_.string();
  base["WAYLAND_DISPLAY"] = socket_;
  base["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (runtime_ / "bus").string();
  base["DISPLAY"] = xDisplay_;
  base["XAUTHORITY"] = xAuthority_;
  return base;
}

}  // namespace korvo::desktop_test
