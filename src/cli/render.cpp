#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "base/clock.hpp"
#include "base/standard_output.hpp"
#include "cli/commands.hpp"
#include "cli/render_widget.hpp"
#include "cli/widgets.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "ui/color.hpp"

namespace korvo::cli {
namespace {

struct RenderOptions {
  std::string kind;
  ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
  EntryRequest entry = EntryRequest::timeline;
  std::string snapshotFile;
  std::optional<std::string> now;
  ui::ColorScheme appearance = ui::ColorScheme::light;
  ui::RenderingMode rendering = ui::RenderingMode::fullColor;
  std::optional<std::string> accent;
  bool legacyBackground = false;
  std::optional<double> scale;
  OutputFormat format = OutputFormat::png;
  std::string output;
};

// Bytes to standard output or a file; the reason when they cannot be written.
std::optional<std::string> writeOutput(const std::string& bytes, const std::string& path) {
  if (path.empty() || path == "-") return writeStandardOutput(bytes);
  return writeFile(path, bytes);
}

std::optional<Url> snapshotURL(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? std::nullopt : Url::file(absolute);
}

void run(const RenderOptions& options, desktop::CommandOutcome& outcome) {
  const WidgetConfiguration& widget = widgetNamed(options.kind);
  requireFamily(widget, options.family);
  std::optional<ui::Color> accent = ui::Color::white();
  if (options.accent) {
    accent = ui::Color::fromHex(*options.accent);
    if (!accent) {
      throw UsageError("--accent: cannot read \"" + *options.accent +
                       "\"; valid forms: #RRGGBB or #RRGGBBAA");
    }
  }
  if (options.scale && !(*options.scale > 0 && *options.scale <= 16)) {
    throw UsageError("--scale: must be a number above 0 and at most 16");
  }
  // PNG bytes on a terminal are noise that can leave it in a strange state.
  if (options.format == OutputFormat::png && (options.output.empty() || options.output == "-") &&
      ::isatty(STDOUT_FILENO) == 1) {
    throw UsageError(
        "standard output is a terminal; write the PNG to a file with -o FILE (or pipe it)");
  }
  pinClock(options.now);

  TimelineContext context{.isPreview = false, .family = options.family};
  if (!options.snapshotFile.empty()) {
    context.snapshotFile = snapshotURL(options.snapshotFile);
    // A file the user named is expected to be read: say why it is not. The card stays what the
    // widget shows without the file.
    const Decoded<WidgetSnapshot> decoded = WidgetSnapshotStore::inspect(context.snapshotFile);
    if (const auto* failure = std::get_if<DecodeFailure>(&decoded)) {
      std::cerr << "korvo-widgets: --snapshot-file " << options.snapshotFile << ": "
                << failure->reason << '\n';
    }
  }
  const AnyEntry entry = requestEntry(widget, options.entry, context);

  ui::Environment environment;
  environment.family = options.family;
  environment.renderingMode = options.rendering;
  environment.colorScheme = options.appearance;
  environment.hostSuppliesContainerBackground = !options.legacyBackground;
  environment.now = clock::now();
  environment.accentColor = *accent;

  const double scale = options.scale.value_or(options.format == OutputFormat::svg ? 1 : 2);
  const std::optional<std::string> bytes =
      renderEntry(widget, entry, environment, options.format, scale);
  if (!bytes) {
    std::cerr << "korvo-widgets: rendering " << widget.kind << " failed\n";
    outcome.exitCode = exitFailure;
    return;
  }
  if (const auto failure = writeOutput(*bytes, options.output)) {
    std::cerr << "korvo-widgets: " << *failure << '\n';
    outcome.exitCode = exitFailure;
    return;
  }
  outcome.exitCode = exitSuccess;
}

}  // namespace

void addRenderCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "render",
      "Render one widget headless, as the desktop would show it, to PNG, SVG, or its "
      "laid-out view tree (JSON or an indented outline).");
  auto options = std::make_shared<RenderOptions>();
  addKindArgument(command, options->kind);
  desktop::addChoice(command, "--family", options->family, ui::familyWords,
                     "Widget size: small (170x170 points, the default) or medium "
                     "(364x170); the widget must offer it.");
  desktop::addChoice(command, "--entry", options->entry, entryRequestWords,
                     "Which request supplies the entry: placeholder (sample data), snapshot "
                     "or timeline (live data, the default).");
  command->add_option("--snapshot-file", options->snapshotFile,
                      "Read the shared snapshot from this file instead of the group container.");
  addTextOption(command, "--now", options->now,
                "Stand-in for the clock: ISO 8601 with a zone (2026-11-15T01:45:00Z) or "
                "Unix seconds.");
  desktop::addChoice(command, "--appearance", options->appearance, ui::colorSchemeWords,
                     "Colour scheme: light (the default) or dark.");
  desktop::addChoice(command, "--rendering", options->rendering, ui::renderingModeWords,
                     "Rendering mode: full-color (the default), or accented (accent "
                     "group tinted, the rest white).");
  addTextOption(command, "--accent", options->accent,
                "Accent colour of accented rendering, #RRGGBB or #RRGGBBAA (default white).");
  command->add_flag("--legacy-background", options->legacyBackground,
                    "Draw the path without a host-supplied container background: 16-point padding "
                    "with the backdrop behind.");
  command->add_option("--scale", options->scale,
                      "Device pixels per point (default 2 for png, json and tree; 1 for svg).");
  desktop::addChoice(command, "--format", options->format, outputFormatWords,
                     "Output: png (the default), svg, json (the laid-out tree) or tree (an "
                     "indented outline).");
  command->add_option("-o,--output", options->output,
                      "Write to this file instead of standard output.");
  command->callback([options, &outcome] { run(*options, outcome); });
}

}  // namespace korvo::cli
