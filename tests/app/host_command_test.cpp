#include "app/host_command.hpp"

#include <gtest/gtest.h>

#include "base/exit_codes.hpp"

namespace korvo {
namespace {

using Action = AwakeCommand::Action;

TEST(HostCommandTest, EachCommandIsRead) {
  const std::pair<std::vector<std::string>, HostCommand> cases[] = {
      {{"korvo"}, OpenDashboard{}},
      {{"korvo", "open"}, OpenDashboard{}},
      {{"korvo", "open", "korvo://awake"}, OpenDashboard{"korvo://awake"}},
      {{"korvo", "service"}, RunService{}},
      {{"korvo", "awake", "start"}, AwakeCommand{Action::start, std::nullopt, false}},
      {{"korvo", "awake", "start", "2m"}, AwakeCommand{Action::start, AwakeDuration{120}, false}},
      {{"korvo", "awake", "extend", "indefinitely"},
       AwakeCommand{Action::extend, AwakeDuration{}, false}},
      {{"korvo", "awake", "stop"}, AwakeCommand{Action::stop, std::nullopt, false}},
      {{"korvo", "awake", "status", "--json"}, AwakeCommand{Action::status, std::nullopt, true}},
  };
  for (const auto& [words, command] : cases) {
    EXPECT_EQ(parseHostCommand(words), command) << words.size();
  }
}

TEST(HostCommandTest, MistakesAreRefused) {
  EXPECT_THROW(parseHostCommand({"korvo", "awake", "start", "soon"}), UsageError);
  EXPECT_THROW(parseHostCommand({"korvo", "open", "https://example.com"}), UsageError);
  EXPECT_THROW(parseHostCommand({"korvo", "awake"}), CLI::ParseError);
  EXPECT_THROW(parseHostCommand({"korvo", "awake", "pause"}), CLI::ParseError);
  EXPECT_THROW(parseHostCommand({"korvo", "awake", "stop", "2m"}), CLI::ParseError);
}

}  // namespace
}  // namespace korvo
