#include <csignal>
#include <cstring>
#include <iostream>

#include "cli/commands.hpp"
#include "desktop/core/host_record.hpp"

namespace korvo::cli {

void addReloadCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "reload",
      "Ask the running desktop host to ask every widget's provider again now; exit 1 when none "
      "runs.");
  command->callback([&outcome] {
    const auto host = HostRecord::runningHost();
    if (const auto* reason = std::get_if<std::string>(&host)) {
      std::cerr << "korvo-widgets: " << *reason << '\n';
      outcome.exitCode = exitFailure;
      return;
    }
    const pid_t pid = std::get<pid_t>(host);
    if (::kill(pid, HostRecord::reloadSignal) != 0) {
      std::cerr << "korvo-widgets: cannot reach the desktop host (pid " << pid
                << "): " << std::strerror(errno) << '\n';
      outcome.exitCode = exitFailure;
      return;
    }
    outcome.exitCode = exitSuccess;
  });
}

}  // namespace korvo::cli
