#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/core/widget_lookup.hpp"
#include "extension/widget_configuration.hpp"
#include "ui/environment.hpp"
#include "ui/words.hpp"

namespace korvo::cli {

// The configuration named by a full kind or its last word; a UsageError naming the valid kinds
// otherwise.
const WidgetConfiguration& widgetNamed(std::string_view kind);

// The required KIND argument: a full kind or its last word.
void addKindArgument(CLI::App* command, std::string& kind);

// The family a widget is rendered in; a UsageError naming the families it offers when it does
// not offer `family`.
void requireFamily(const WidgetConfiguration& widget, ui::WidgetFamily family);

// "small, medium": the widget's families as the command line writes them.
std::string familyWords(const WidgetConfiguration& widget);

// Pins the one clock to a moment given as ISO 8601 or Unix seconds; a UsageError for anything
// else, an empty text included. None leaves the clock alone.
void pinClock(const std::optional<std::string>& moment);

// Writes `bytes` to the file at `path`, replacing what it held; otherwise the reason, naming the
// file ("cannot write out.png: No space left on device").
std::optional<std::string> writeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace korvo::cli
