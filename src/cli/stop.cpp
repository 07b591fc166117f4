#include <csignal>
#include <cstring>
#include <iostream>
#include <thread>

#include "cli/commands.hpp"
#include "desktop/core/host_record.hpp"

namespace korvo::cli {
namespace {

// How long `stop` waits for the host to leave: it only closes its windows and the bus name.
constexpr auto stopWait = std::chrono::seconds(10);
constexpr auto stopPoll = std::chrono::milliseconds(20);

// Whether the host `pid` is gone before `stopWait` has passed.
bool ended(pid_t pid) {
  const auto deadline = std::chrono::steady_clock::now() + stopWait;
  while (std::chrono::steady_clock::now() < deadline) {
    const auto host = HostRecord::runningHost();
    const auto* running = std::get_if<pid_t>(&host);
    if (running == nullptr || *running != pid) return true;
    std::this_thread::sleep_for(stopPoll);
  }
  return false;
}

}  // namespace

void addStopCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "stop", "End the running desktop host and wait until it has gone; exit 1 when none runs.");
  command->callback([&outcome] {
    const auto host = HostRecord::runningHost();
    if (const auto* reason = std::get_if<std::string>(&host)) {
      std::cerr << "korvo-widgets: " << *reason << '\n';
      outcome.exitCode = exitFailure;
      return;
    }
    const pid_t pid = std::get<pid_t>(host);
    if (::kill(pid, SIGTERM) != 0) {
      std::cerr << "korvo-widgets: cannot reach the desktop host (pid " << pid
                << "): " << std::strerror(errno) << '\n';
      outcome.exitCode = exitFailure;
      return;
    }
    if (!ended(pid)) {
      std::cerr << "korvo-widgets: the desktop host (pid " << pid << ") did not end within "
                << stopWait.count() << " s\n";
      outcome.exitCode = exitFailure;
      return;
    }
    outcome.exitCode = exitSuccess;
  });
}

}  // namespace korvo::cli
