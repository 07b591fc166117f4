#include "host/run_command.hpp"

#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "base/clock.hpp"
#include "host/cli_errors.hpp"
#include "host/cli_widgets.hpp"
#include "host/host_desktop.hpp"

namespace korvo {
namespace {

struct RunArguments {
  host::HostOptions options;
  std::string appearance;
  std::optional<std::string> accent;
  std::optional<double> timeRate;
  std::optional<double> timeOffset;
  std::string placementsFile;
  std::string dumpDirectory;
};

host::HostOptions resolve(RunArguments arguments) {
  auto options = std::move(arguments.options);
  if (arguments.accent) {
    const auto accent = ui::Color::fromHex(*arguments.accent);
    if (!accent) {
      throw cli::UsageError("--accent: cannot read \"" + *arguments.accent +
                            "\"; valid forms: #RRGGBB or #RRGGBBAA");
    }
    options.accent = *accent;
  }
  if (!(options.scale > 0 && options.scale <= 8)) {
    throw cli::UsageError("--scale: must be a number above 0 and at most 8");
  }
  const auto fromEnvironment = host::timeWarpFromEnvironment(std::getenv("KORVO_TIME_OFFSET"),
                                                             std::getenv("KORVO_TIME_RATE"));
  if (fromEnvironment.error) throw cli::UsageError(*fromEnvironment.error);
  options.warp = fromEnvironment.warp;
  if (arguments.timeRate) {
    if (!(*arguments.timeRate > 0)) throw cli::UsageError("--time-rate: must be a number above 0");
    options.warp.rate = *arguments.timeRate;
  }
  if (arguments.timeOffset) options.warp.offsetSeconds = *arguments.timeOffset;
  if (!arguments.placementsFile.empty()) options.placementsFile = arguments.placementsFile;
  if (!arguments.dumpDirectory.empty()) options.dumpDirectory = arguments.dumpDirectory;
  const char* debug = std::getenv("KORVO_HOST_DEBUG");
  options.logRequests = debug != nullptr && *debug != '\0' && std::string_view(debug) != "0";
  // Refuse a bad --widget before any window opens.
  const auto parsed = host::parseWidgetArguments(options.widgets, host::kindLookup(cli::widgets()));
  if (const auto* failure = std::get_if<host::PlacementError>(&parsed)) {
    throw cli::UsageError(failure->message);
  }
  return options;
}

void run(const RunArguments& arguments) {
  auto options = resolve(arguments);
  if (options.warp != host::TimeWarp{}) {
    clock::setWarp(options.warp.offsetSeconds, options.warp.rate);
  }
  // The cards are painted with Cairo in memory; probing OpenGL for visuals would load the GL driver
  // (tens of megabytes) for nothing. A GDK_GL the user set still wins.
  g_setenv("GDK_GL", "disable", FALSE);
  if (!gtk_init_check(nullptr, nullptr)) {
    std::fprintf(stderr,
                 "korvo-widgets: cannot open the display (is DISPLAY or WAYLAND_DISPLAY set?)\n");
    std::exit(cli::exitFailure);
  }
  host::DesktopHost desktop(cli::widgets(), std::move(options));
  desktop.run();
}

}  // namespace

void addRunCommand(CLI::App& app) {
  auto* command = app.add_subcommand(
      "run",
      "Show the widgets on the desktop: one window per placed widget, kept current by its "
      "provider's timeline. Placements come from --widget, else "
      "$XDG_CONFIG_HOME/korvo-widgets/placements.json (re-read on change and on SIGHUP), else "
      "all four widgets in a column at the right edge.");
  auto arguments = std::make_shared<RunArguments>();
  command->add_option("--widget", arguments->options.widgets,
                      "Place this widget, KIND[:small|medium] (e.g. memory:medium); repeat for "
                      "more. Replaces the placements file.");
  command->add_option("--placements", arguments->placementsFile,
                      "Read and watch this placements file instead of the user's.");
  cli::addChoice<std::optional<ui::ColorScheme>>(
      command, "--appearance", arguments->options.appearance,
      {{"light", ui::ColorScheme::light}, {"dark", ui::ColorScheme::dark}},
      "Colour scheme: light or dark instead of following the desktop.");
  cli::addChoice<ui::RenderingMode>(
      command, "--rendering", arguments->options.renderingMode,
      {{"full-color", ui::RenderingMode::fullColor}, {"accented", ui::RenderingMode::accented}},
      "Rendering mode: full-color (the default), or accented (accent group tinted, the rest "
      "white).");
  cli::addTextOption(command, "--accent", arguments->accent,
                     "Accent colour of accented rendering, #RRGGBB or #RRGGBBAA (default white).");
  command->add_option("--scale", arguments->options.scale,
                      "Logical pixels per point, on top of the desktop's own scale (default 1).");
  command->add_option("--time-rate", arguments->timeRate,
                      "Run the widgets' clock this many times as fast (tests; also "
                      "KORVO_TIME_RATE).");
  command->add_option("--time-offset", arguments->timeOffset,
                      "Shift the widgets' clock by this many seconds (tests; also "
                      "KORVO_TIME_OFFSET).");
  command->add_option("--dump-dir", arguments->dumpDirectory,
                      "Write each window's laid-out tree as JSON into this folder on every new "
                      "entry and on SIGUSR1 (N-KIND-FAMILY.json).");
  command->callback([arguments] { run(*arguments); });
}

}  // namespace korvo
