#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <sstream>

#include "app/chained_command.hpp"
#include "app/claude_settings_file.hpp"
#include "app/claude_update.hpp"
#include "app/cli_commands.hpp"
#include "app/settings_file.hpp"
#include "base/command_line_words.hpp"
#include "base/exit_codes.hpp"
#include "base/standard_output.hpp"
#include "sources/claude_status_line.hpp"

namespace korvo::app {
namespace {

// A chained status line gets this long before it is stopped.
constexpr std::chrono::seconds chainLimit{10};

// Standard input up to the limit; what lies beyond is left unread.
std::string readInput() {
  std::string input(claude_status_line::maxInputBytes, '\0');
  std::size_t filled = 0;
  while (filled < input.size()) {
    const ssize_t got = ::read(STDIN_FILENO, input.data() + filled, input.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    filled += static_cast<std::size_t>(got);
  }
  input.resize(filled);
  return input;
}

// Claude Code shows whatever the status line prints, so nothing here may fail out loud.
void runStatusLine(const std::optional<std::string>& chain) {
  // A reader gone away or a file size limit make writes fail, which is dealt with, instead of
  // ending korvo.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  const std::string input = readInput();
  const auto parsed = claude_status_line::parseInput(input);
  std::ostringstream ignored;
  // Without figures (API-key users, a session's start) nothing is written.
  claude_update::apply(parsed.windows, settings_file::load(ignored));
  const auto chained = chain ? runChained(*chain, input, chainLimit) : std::nullopt;
  // Without a chain, or when the chained command cannot be started: korvo's own line. Output
  // that cannot be written is not korvo's to report.
  writeStandardOutput(chained ? chained->out : claude_update::statusText(parsed) + '\n');
}

}  // namespace

void addClaudeStatusLineCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand(
      "claude-statusline",
      "Claude Code's status line: take the limits from its input into the shared file");
  struct Options {
    std::optional<std::string> chain;
    bool install = false;
    bool uninstall = false;
  };
  auto options = std::make_shared<Options>();
  addTextOption(command, "--chain", options->chain,
                "Run CMD with the same input and print its output instead");
  auto* install = command->add_flag("--install", options->install,
                                    "Make this Claude Code's status line (keeps a backup)");
  auto* uninstall = command->add_flag("--uninstall", options->uninstall,
                                      "Put back the status line that was there before");
  install->excludes(uninstall);
  command->callback([options, &exitCode] {
    if (options->chain && options->chain->empty()) {
      throw UsageError("--chain: empty; valid: the command to run with the same input");
    }
    if (options->install) {
      print(claude_settings_file::install(claude_settings_file::korvoExecutable()) + '\n');
    } else if (options->uninstall) {
      print(claude_settings_file::uninstall(claude_settings_file::korvoExecutable()) + '\n');
    } else {
      try {
        runStatusLine(options->chain);
      } catch (const std::exception&) {
        // Still exit 0: Claude Code keeps its status line.
      }
    }
    exitCode = exitSuccess;
  });
}

}  // namespace korvo::app
