#include <iostream>

#include "base/c_format.hpp"
#include "cli/commands.hpp"
#include "model/entry_json.hpp"
#include "sampling/memory_format.hpp"
#include "sampling/memory_json.hpp"
#include "sampling/system_sampler.hpp"
#include "shared/moment_text.hpp"

namespace korvo::cli {
namespace {

void printFigure(std::string_view name, std::uint64_t bytes) {
  std::cout << cFormat("%-12s %20llu bytes  %s\n", std::string(name).c_str(),
                       static_cast<unsigned long long>(bytes),
                       MemoryFormat::gigabytes(bytes).c_str());
}

void run(bool json, desktop::CommandOutcome& outcome) {
  const SystemSampler sampler = SystemSampler::fromEnvironment();
  const std::optional<MemorySnapshot> reading = sampler.readMemory();
  if (!reading) {
    std::cerr << "korvo-widgets: no memory reading (meminfo under $KORVO_SYSROOT is missing, "
                 "incomplete or out of range)\n";
    outcome.exitCode = exitFailure;
    return;
  }
  if (json) {
    std::cout << documentText(toJson(*reading), 2) << '\n';
  } else {
    printFigure("total", reading->total);
    printFigure("app", reading->app);
    printFigure("wired", reading->wired);
    printFigure("compressed", reading->compressed);
    printFigure("cached", reading->cached);
    if (reading->swap) {
      printFigure("swap", *reading->swap);
    } else {
      std::cout << cFormat("%-12s %20s\n", "swap", "unavailable");
    }
    std::cout << cFormat("%-12s %20s\n", "pressure",
                         std::string(rawValue(reading->pressure)).c_str());
    std::cout << cFormat("%-12s %20s\n", "timestamp", isoMoment(reading->timestamp).c_str());
    printFigure("used", reading->used());
    printFigure("available", reading->available());
    std::cout << cFormat("%-12s %20.4f  %.0f%%\n", "usedFraction", reading->usedFraction(),
                         reading->usedFraction() * 100);
  }
  outcome.exitCode = exitSuccess;
}

}  // namespace

void addMemoryCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "memory",
      "Take one live memory reading (under $KORVO_SYSROOT, default /) and print every field and "
      "the derived used, available and usedFraction; exit 1 when there is no reading.");
  auto json = std::make_shared<bool>(false);
  command->add_flag("--json", *json,
                    "Print the reading as JSON (bytes; dates in seconds since "
                    "2001-01-01 UTC).");
  command->callback([json, &outcome] { run(*json, outcome); });
}

}  // namespace korvo::cli
