#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "app/cli_commands.hpp"
#include "app/exit_codes.hpp"

namespace korvo::app {
namespace {

// The service is its own executable, so that the file commands never load GLib: beside korvo
// in a build tree, in ../libexec/korvo/ when installed.
std::filesystem::path serviceExecutable() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) throw std::runtime_error("cannot find korvo's own path");
  for (const auto& candidate :
       {self.parent_path() / "korvo-service",
        self.parent_path() / ".." / "libexec" / "korvo" / "korvo-service"}) {
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  throw std::runtime_error("korvo-service is missing beside " + self.string() +
                           " and in ../libexec/korvo/");
}

}  // namespace

void addServiceCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand(
      "service",
      "The background service: publishes at start, every publishSeconds and on a "
      "settings change");
  command->callback([&exitCode] {
    const auto service = serviceExecutable();
    const char* argv[] = {service.c_str(), nullptr};
    ::execv(service.c_str(), const_cast<char* const*>(argv));
    exitCode = exitFailure;
    throw std::runtime_error("cannot start " + service.string() + ": " + std::strerror(errno));
  });
}

}  // namespace korvo::app
