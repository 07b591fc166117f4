#include <gtest/gtest.h>

#include "support/korvo_process.hpp"

namespace korvo {
namespace {

using testing_support::KorvoWorld;
using testing_support::readFile;

// Rollouts and status-line input carry the user's conversations; none of it may leave them.
const std::string secret = "sk-SECRET-7f3a9c-do-not-copy";

TEST(PrivacyTest, ASecretInRolloutsAndStatusLineInputAppearsInNoOutput) {
  KorvoWorld world;
  // The rollout's own path is named by `korvo codex` on request, so the secret sits inside it.
  world.write(
      "codex/sessions/2026/11/15/rollout-a.jsonl",
      R"({"timestamp":"2026-11-15T01:30:00Z","type":"response_item","payload":{"type":"message","content":")" +
          secret + "\"}}\n" +
          R"({"timestamp":"2026-11-15T01:30:05Z","type":"event_msg","payload":{"type":"token_count","info":{"note":")" +
          secret + R"("},"rate_limits":{"limit_id":"codex","plan_type":")" + secret +
          R"(","credits":{"has_credits":true,"unlimited":false,"balance":")" + secret +
          R"("},"primary":{"used_percent":5,"window_minutes":300}}}})"
          "\n" +
          R"({"timestamp":"2026-11-15T01:30:06Z","type":"event_msg","payload":{"type":"token_count","rate_limits":{"limit_id":")" +
          secret +
          R"(","primary":{"used_percent":7}}}})"
          "\n" +
          R"({"broken":")" + secret + "\n");
  const std::string input = R"({"session_id":")" + secret + R"(","transcript_path":"/home/u/)" +
                            secret + R"(.jsonl","cwd":"/)" + secret +
                            R"(","rate_limits":{"five_hour":{"used_percentage":5,"note":")" +
                            secret + R"("}}})";
  std::string outputs;
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"publish"}, {"publish", "--print"}, {"codex"}, {"claude-statusline"}}) {
    const auto result = world.korvo(args, input);
    outputs += result.out + result.err;
  }
  outputs += world.korvo({"claude-statusline"}, "{\"" + secret).out;
  outputs += readFile(world.sharedFile());
  outputs += readFile(world.home() / ".local/state/korvo/codex.json");
  EXPECT_EQ(outputs.find(secret), std::string::npos) << outputs;
}

}  // namespace
}  // namespace korvo
