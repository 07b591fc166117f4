#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "extension/widget_configuration.hpp"
#include "ui/environment.hpp"
#include "ui/words.hpp"

namespace korvo::cli {

// The bundle's configurations, built once for the process.
const std::vector<WidgetConfiguration>& widgets();

// The configuration named by a full kind or its last word; a UsageError naming the valid kinds
// otherwise.
const WidgetConfiguration& widgetNamed(std::string_view kind);

// "valid kinds: memory, awake, … (or the full kind, …)", for usage errors.
std::string validKinds();

// The required KIND argument: a full kind or its last word.
void addKindArgument(CLI::App* command, std::string& kind);

// The family a widget is rendered in; a UsageError naming the families it offers when it does
// not offer `family`.
void requireFamily(const WidgetConfiguration& widget, ui::WidgetFamily family);

// "small, medium": the widget's families as the command line writes them.
std::string familyWords(const WidgetConfiguration& widget);

// An option taking one of `choices` by name; any other value is refused with a message naming
// the valid ones.
template <class Target, class Value, std::size_t count>
CLI::Option* addChoice(CLI::App* command, const std::string& name, Target& target,
                       const std::array<ui::Word<Value>, count>& choices,
                       const std::string& description) {
  std::vector<std::string> names;
  for (const auto& choice : choices) {
    names.emplace_back(choice.word);
  }
  return command
      ->add_option_function<std::string>(
          name,
          [&target, choices](const std::string& value) {
            if (const auto choice = ui::valueNamed<Value>(choices, value)) target = *choice;
          },
          description)
      ->check(CLI::IsMember(names));
}

// An option or argument kept as the user wrote it: absent when not given, and an empty value
// stays an empty text (a plain optional would read "" as absent).
CLI::Option* addTextOption(CLI::App* command, const std::string& name,
                           std::optional<std::string>& target, const std::string& description);

// Pins the one clock to a moment given as ISO 8601 or Unix seconds; a UsageError for anything
// else, an empty text included. None leaves the clock alone.
void pinClock(const std::optional<std::string>& moment);

// Writes `bytes` to the file at `path`, replacing what it held; otherwise the reason, naming the
// file ("cannot write out.png: No space left on device").
std::optional<std::string> writeFile(const std::filesystem::path& path, std::string_view bytes);

// Writes `bytes` to standard output now; the reason when they could not all be written
// ("cannot write standard output: No space left on device").
std::optional<std::string> writeStandardOutput(std::string_view bytes);

// Flushes standard output; the reason when anything written to it was lost.
std::optional<std::string> standardOutputFailure();

}  // namespace korvo::cli
