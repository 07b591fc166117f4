#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/command_line_words.hpp"
#include "base/exit_codes.hpp"
#include "ui/words.hpp"

namespace korvo::desktop {

// An option taking one of `choices` by name; any other value is refused with a message naming
// the valid ones.
template <class Target, class Value, std::size_t count>
CLI::Option* addChoice(CLI::App* command, const std::string& name, Target& target,
                       const Words<Value, count>& choices, const std::string& description) {
  std::vector<std::string> names;
  for (const auto& choice : choices) {
    names.emplace_back(choice.word);
  }
  return command
      ->add_option_function<std::string>(
          name,
          [&target, choices](const std::string& value) {
            if (const auto choice = valueNamed(choices, value)) target = *choice;
          },
          description)
      ->check(CLI::IsMember(names));
}

// What a subcommand reports once it has run.
struct CommandOutcome {
  int exitCode = exitSuccess;
};

// Parses and runs `app`; usage errors become one line "program: problem; valid: …" on standard
// error and exit status 2, help goes to standard output. Returns the exit status.
int parseAndRun(CLI::App& app, int argc, char** argv, std::string_view program,
                const CommandOutcome& outcome);

}  // namespace korvo::desktop
