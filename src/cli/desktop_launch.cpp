#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "base/text.hpp"
#include "cli/commands.hpp"
#include "desktop/core/host_tunables.hpp"

namespace korvo::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* hostName = "korvo-widgets-desktop";

// The desktop host: installed under libexec beside our bin/, else next to us, else the build
// tree's.
std::vector<fs::path> hostCandidates() {
  std::vector<fs::path> candidates;
  std::error_code error;
  const fs::path self = fs::read_symlink("/proc/self/exe", error);
  if (!error) {
    const fs::path directory = self.parent_path();
    candidates.push_back(directory / ".." / "libexec" / "korvo-widgets" / hostName);
    candidates.push_back(directory / hostName);
  }
  candidates.emplace_back(KORVO_BUILD_DESKTOP_HOST);
  return candidates;
}

[[noreturn]] void startDesktopHost(const std::vector<std::string>& arguments) {
  std::vector<std::string> looked;
  for (const fs::path& candidate : hostCandidates()) {
    if (::access(candidate.c_str(), X_OK) != 0) {
      looked.push_back(candidate.lexically_normal().string());
      continue;
    }
    std::vector<char*> argv;
    std::string program = "korvo-widgets";
    argv.push_back(program.data());
    for (const std::string& argument : arguments)
      argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    // A user's own tunables win.
    ::setenv(desktop::tunablesVariable, desktop::hostTunables, 0);
    ::execv(candidate.c_str(), argv.data());
    std::cerr << "korvo-widgets: cannot start the desktop host " << candidate.string() << ": "
              << std::strerror(errno) << '\n';
    std::exit(exitFailure);
  }
  std::cerr << "korvo-widgets: the desktop host is not installed (looked for "
            << joined(looked, ", ") << ")\n";
  std::exit(exitFailure);
}

}  // namespace

void addRunCommand(CLI::App& app, desktop::CommandOutcome&) {
  auto* command = app.add_subcommand(
      "run",
      "Show the widgets on the desktop (korvo-widgets run --help lists the desktop host's "
      "options).");
  // Everything after `run`, --help included, is the desktop host's to read.
  command->set_help_flag();
  command->prefix_command();
  command->allow_extras();
  command->callback([command] { startDesktopHost(command->remaining()); });
}

}  // namespace korvo::cli
