#include <iostream>

#include "app/cli_commands.hpp"
#include "app/settings_file.hpp"
#include "base/command_line_words.hpp"
#include "base/display_text.hpp"
#include "base/exit_codes.hpp"

namespace korvo::app {

void addSettingsCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand(
      "settings", "Print every setting, print one (KEY), or change one (KEY VALUE)");
  struct Options {
    std::optional<std::string> key;
    std::optional<std::string> value;
  };
  auto options = std::make_shared<Options>();
  addTextOption(command, "KEY", options->key, wordList(settingKeyWords));
  addTextOption(command, "VALUE", options->value, "The new value (an empty codexHome removes it)");
  command->callback([options, &exitCode] {
    if (options->value) {
      settings_file::set(*options->key, settingValue(*options->key, *options->value));
      exitCode = exitSuccess;
      return;
    }
    const auto document = settingsDocument(settings_file::load(std::cerr));
    if (!options->key) {
      print(document.dump(2) + '\n');
    } else if (!valueNamed(settingKeyWords, *options->key)) {
      settingValue(*options->key, "");  // throws the usage error naming the keys
    } else if (!document.contains(*options->key)) {
      print("\n");  // codexHome unset
    } else if (const auto& value = document[*options->key]; value.is_string()) {
      print(displayText(value.get<std::string>()) + '\n');
    } else {
      print(value.dump() + '\n');
    }
    exitCode = exitSuccess;
  });
}

}  // namespace korvo::app
