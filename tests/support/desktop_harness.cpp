#include "support/desktop_harness.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::vector<char*> pointers(std::vector<std::string>& strings) {
  std::vector<char*> result;
  for (auto& text : strings) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

// The given variables, plus the sanitizer build's settings (leak suppressions included), which
// every child must see to judge itself as the tests do.
std::vector<std::string> flatten(const Environment& environment) {
  std::vector<std::string> result;
  for (const auto& [name, value] : environment) result.push_back(name + "=" + value);
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
    if (const char* value = ::getenv(name); value != nullptr && !environment.contains(name)) {
      result.push_back(std::string(name) + "=" + value);
    }
  }
  return result;
}

// fork + exec in a new process group; the child's output goes to the given descriptors.
pid_t spawn(const std::vector<std::string>& arguments, const Environment& environment,
            int standardOutput, int standardError, std::optional<int> inherited) {
  auto argv = arguments;
  auto envp = flatten(environment);
  auto argvPointers = pointers(argv);
  auto envpPointers = pointers(envp);
  const pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    setpgid(0, 0);
    const int devNull = open("/dev/null", O_RDONLY);
    dup2(devNull, STDIN_FILENO);
    dup2(standardOutput, STDOUT_FILENO);
    dup2(standardError, STDERR_FILENO);
    if (inherited) fcntl(*inherited, F_SETFD, 0);
    execvpe(argvPointers[0], argvPointers.data(), envpPointers.data());
    _exit(127);
  }
  setpgid(pid, pid);
  return pid;
}

bool reap(pid_t pid, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (std::chrono::steady_clock::now() < deadline) {
    int status = 0;
    const pid_t done = waitpid(pid, &status, WNOHANG);
    if (done == pid || done < 0) return true;
    std::this_thread::sleep_for(10ms);
  }
  return false;
}

}  // namespace

Process::Process(const std::vector<std::string>& arguments, const Environment& environment,
                 const fs::path& standardOutput, const fs::path& standardError,
                 std::optional<int> inheritedDescriptor) {
  const int out = open(standardOutput.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  const int err = open(standardError.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  pid_ = spawn(arguments, environment, out, err, inheritedDescriptor);
  close(out);
  close(err);
}

Process::~Process() {
  stop();
}

bool Process::running() {
  if (exited_) return false;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) == pid_) exited_ = true;
  return !exited_;
}

void Process::signal(int number) const {
  kill(pid_, number);
}

void Process::stop() {
  if (pid_ <= 0) return;
  kill(-pid_, SIGTERM);
  if (!exited_ && !reap(pid_, 5s)) {
    kill(-pid_, SIGKILL);
    reap(pid_, 5s);
  }
  // Whatever the child left in its group (a launched handler) goes too.
  kill(-pid_, SIGKILL);
  exited_ = true;
  pid_ = -1;
}

CommandResult runCommand(const std::vector<std::string>& arguments,
                         const Environment& environment) {
  int pipeEnds[2];
  if (pipe2(pipeEnds, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
  const int devNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
  const pid_t pid = spawn(arguments, environment, pipeEnds[1], devNull, std::nullopt);
  close(pipeEnds[1]);
  close(devNull);
  CommandResult result;
  char buffer[4096];
  // Output is small; a command that hangs is killed after a minute.
  const auto deadline = std::chrono::steady_clock::now() + 60s;
  fcntl(pipeEnds[0], F_SETFL, O_NONBLOCK);
  for (;;) {
    const ssize_t count = read(pipeEnds[0], buffer, sizeof buffer);
    if (count > 0) {
      result.output.append(buffer, static_cast<std::size_t>(count));
      continue;
    }
    if (count == 0) break;
    if (std::chrono::steady_clock::now() > deadline) {
      kill(-pid, SIGKILL);
      break;
    }
    std::this_thread::sleep_for(5ms);
  }
  close(pipeEnds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  for (;;) {
    if (condition()) return true;
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(50ms);
  }
}

void setXCookie(const fs::path& file, const std::string& display, const std::string& cookie) {
  const CommandResult result =
      runCommand({"xauth", "-q", "-f", file.string(), "add", display, ".", cookie},
                 {{"PATH", "/usr/bin:/bin"}});
  if (result.exitStatus != 0) throw std::runtime_error("xauth could not write " + file.string());
}

XServer::XServer(int width, int height, const fs::path& logFolder,
                 std::optional<std::string> cookie) {
  int pipeEnds[2];
  if (pipe2(pipeEnds, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
  const Environment environment{{"PATH", "/usr/bin:/bin"}};
  std::vector<std::string> arguments{
      "Xvfb",      "-displayfd", std::to_string(pipeEnds[1]),
      "-screen",   "0",          std::to_string(width) + "x" + std::to_string(height) + "x24",
      "-nolisten", "tcp",        "-noreset"};
  if (cookie) {
    // The server takes every cookie in its own file, whatever display an entry names, and reads
    // that file again when it changes; clients look theirs up by display in another file, which
    // a test may change without the server following.
    const fs::path serverAuthority = logFolder / "Xauthority.server";
    setXCookie(serverAuthority, ":0", *cookie);
    arguments.insert(arguments.end(), {"-auth", serverAuthority.string()});
  }
  process_ = std::make_unique<Process>(arguments, environment, logFolder / "xvfb.out",
                                       logFolder / "xvfb.err", pipeEnds[1]);
  close(pipeEnds[1]);
  std::string number;
  char character = 0;
  while (read(pipeEnds[0], &character, 1) == 1 && character != '\n') number += character;
  close(pipeEnds[0]);
  if (number.empty()) throw std::runtime_error("Xvfb did not start");
  display_ = ":" + number;
  if (cookie) {
    authority_ = logFolder / "Xauthority";
    setXCookie(authority_, display_, *cookie);
  }
}

ActivatingSessionBus::ActivatingSessionBus(const fs::path& folder, const std::string& display) {
  fs::create_directories(folder / "home");
  const auto address = folder / "bus-address";
  process_ = std::make_unique<Process>(
      std::vector<std::string>{"dbus-run-session", "--", "sh", "-c",
                               "printf %s \"$DBUS_SESSION_BUS_ADDRESS\" > \"$0.tmp\" && "
                               "mv \"$0.tmp\" \"$0\" && exec sleep 600",
                               address.string()},
      Environment{{"PATH", "/usr/bin:/bin"},
                  {"HOME", (folder / "home").string()},
                  {"DISPLAY", display},
                  {"XDG_DATA_DIRS", "/usr/local/share:/usr/share"}},
      folder / "bus.out", folder / "bus.err");
  if (!waitFor([&] { return fs::exists(address); })) {
    throw std::runtime_error("the session bus did not start: " + readFile(folder / "bus.err"));
  }
  address_ = readFile(address);
}

namespace {

Environment xEnvironment(const std::string& display) {
  return {{"PATH", "/usr/bin:/bin"}, {"DISPLAY", display}};
}

int field(const std::string& text, const std::string& label) {
  const auto at = text.find(label);
  if (at == std::string::npos) return -1;
  return std::atoi(text.c_str() + at + label.size());
}

}  // namespace

std::vector<std::string> visibleWindows(const std::string& display,
                                        const std::string& titlePattern) {
  const auto result = runCommand({"xdotool", "search", "--onlyvisible", "--name", titlePattern},
                                 xEnvironment(display));
  std::vector<std::string> ids;
  std::istringstream lines(result.output);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) ids.push_back(line);
  }
  return ids;
}

std::optional<WindowGeometry> windowGeometry(const std::string& display, const std::string& id) {
  const auto result = runCommand({"xwininfo", "-id", id}, xEnvironment(display));
  if (result.exitStatus != 0) return std::nullopt;
  return WindowGeometry{field(result.output, "Absolute upper-left X:"),
                        field(result.output, "Absolute upper-left Y:"),
                        field(result.output, "Width:"), field(result.output, "Height:")};
}

void click(const std::string& display, int x, int y) {
  runCommand({"xdotool", "mousemove", "--sync", std::to_string(x), std::to_string(y), "click", "1"},
             xEnvironment(display));
}

void rightClick(const std::string& display, int x, int y) {
  runCommand({"xdotool", "mousemove", "--sync", std::to_string(x), std::to_string(y), "click", "3"},
             xEnvironment(display));
}

void pressKey(const std::string& display, const std::string& key) {
  runCommand({"xdotool", "key", key}, xEnvironment(display));
}

void screenshot(const std::string& display, const fs::path& file) {
  runCommand({"import", "-window", "root", file.string()}, xEnvironment(display));
}

std::string pixel(const fs::path& picture, int x, int y) {
  const auto result =
      runCommand({"convert", picture.string(), "-format",
                  "%[hex:p{" + std::to_string(x) + "," + std::to_string(y) + "}]", "info:"},
                 {{"PATH", "/usr/bin:/bin"}});
  return result.output.substr(0, 6);
}

}  // namespace korvo::desktop_test
