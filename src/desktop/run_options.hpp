#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "desktop/core/options.hpp"
#include "extension/widget_configuration.hpp"

namespace korvo::desktop {

// The desktop host's command line as given, before it is checked.
struct RunArguments {
  HostOptions options;
  std::optional<std::string> accent;
  std::optional<double> timeRate;
  std::optional<double> timeOffset;
  std::string placementsFile;
  std::string dumpDirectory;
};

// Registers the desktop host's options on `app`, filling `arguments`.
void addRunOptions(CLI::App& app, RunArguments& arguments);

// The options the host runs with, with the environment's clock settings applied; a
// UsageError naming the option and the fault for anything that cannot be used.
HostOptions resolveRunOptions(RunArguments arguments,
                              const std::vector<WidgetConfiguration>& widgets);

}  // namespace korvo::desktop
