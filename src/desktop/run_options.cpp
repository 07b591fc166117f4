#include "desktop/run_options.hpp"

#include <cstdlib>
#include <string_view>

#include "desktop/core/command_line.hpp"
#include "desktop/core/widget_lookup.hpp"
#include "ui/words.hpp"

namespace korvo::desktop {

HostOptions resolveRunOptions(RunArguments arguments,
                              const std::vector<WidgetConfiguration>& widgets) {
  auto options = std::move(arguments.options);
  if (arguments.accent) {
    const auto accent = ui::Color::fromHex(*arguments.accent);
    if (!accent) {
      throw UsageError("--accent: cannot read \"" + *arguments.accent +
                       "\"; valid forms: #RRGGBB or #RRGGBBAA");
    }
    options.accent = *accent;
  }
  if (!(options.scale > 0 && options.scale <= 8)) {
    throw UsageError("--scale: must be a number above 0 and at most 8");
  }
  const auto fromEnvironment =
      timeWarpFromEnvironment(std::getenv("KORVO_TIME_OFFSET"), std::getenv("KORVO_TIME_RATE"));
  if (fromEnvironment.error) throw UsageError(*fromEnvironment.error);
  options.warp = fromEnvironment.warp;
  if (arguments.timeRate) {
    if (!(*arguments.timeRate > 0)) throw UsageError("--time-rate: must be a number above 0");
    options.warp.rate = *arguments.timeRate;
  }
  if (arguments.timeOffset) options.warp.offsetSeconds = *arguments.timeOffset;
  if (!arguments.placementsFile.empty()) options.placementsFile = arguments.placementsFile;
  if (!arguments.dumpDirectory.empty()) options.dumpDirectory = arguments.dumpDirectory;
  const char* debug = std::getenv("KORVO_HOST_DEBUG");
  options.logRequests = debug != nullptr && *debug != '\0' && std::string_view(debug) != "0";
  // Refuse a bad --widget before any window opens.
  const auto parsed = parseWidgetArguments(options.widgets, kindLookup(widgets));
  if (const auto* failure = std::get_if<PlacementError>(&parsed)) {
    throw UsageError(failure->message);
  }
  return options;
}

void addRunOptions(CLI::App& app, RunArguments& arguments) {
  CLI::App* command = &app;
  command->add_option("--widget", arguments.options.widgets,
                      "Place this widget, KIND[:small|medium] (e.g. memory:medium); repeat for "
                      "more. Replaces the placements file.");
  command->add_option("--placements", arguments.placementsFile,
                      "Read and watch this placements file instead of the user's.");
  desktop::addChoice(command, "--appearance", arguments.options.appearance, ui::colorSchemeWords,
                     "Colour scheme: light or dark instead of following the desktop.");
  desktop::addChoice(
      command, "--rendering", arguments.options.renderingMode, ui::renderingModeWords,
      "Rendering mode: full-color (the default), or accented (accent group tinted, the rest "
      "white).");
  addTextOption(command, "--accent", arguments.accent,
                "Accent colour of accented rendering, #RRGGBB or #RRGGBBAA (default white).");
  command->add_option("--scale", arguments.options.scale,
                      "Logical pixels per point, on top of the desktop's own scale (default 1).");
  command->add_option("--time-rate", arguments.timeRate,
                      "Run the widgets' clock this many times as fast (tests; also "
                      "KORVO_TIME_RATE).");
  command->add_option("--time-offset", arguments.timeOffset,
                      "Shift the widgets' clock by this many seconds (tests; also "
                      "KORVO_TIME_OFFSET).");
  command->add_flag("--replace", arguments.options.replace,
                    "Take over from the desktop host already running in this session (without "
                    "it, a second host says that one runs and exits 0).");
  command->add_option("--dump-dir", arguments.dumpDirectory,
                      "Write each window's laid-out tree as JSON into this folder on every new "
                      "entry and on SIGUSR1 (N-KIND-FAMILY.json).");
}

}  // namespace korvo::desktop
