#include "app/awake_duration.hpp"

#include <gtest/gtest.h>

namespace korvo {
namespace {

TEST(AwakeDurationTest, ReadsHoursMinutesAndSecondsInOrder) {
  const std::pair<const char*, std::int64_t> cases[] = {
      {"90s", 90},    {"15m", 900},       {"2h", 7200},  {"1h30m", 5400},
      {"1h0m", 3600}, {"1h30m15s", 5415}, {"2m5s", 125}, {"8784h", maxAwakeSeconds},
  };
  for (const auto& [text, seconds] : cases) {
    EXPECT_EQ(parseAwakeDuration(text), AwakeDuration{seconds}) << text;
  }
}

TEST(AwakeDurationTest, IndefinitelyHasNoEnd) {
  EXPECT_EQ(parseAwakeDuration("indefinitely"), AwakeDuration{});
}

TEST(AwakeDurationTest, RefusesEverythingElse) {
  for (const char* text : {"", "90", "m", "0m", "0h0m", "5x", "1m1h", "1h1h", "-5m", "+5m", "1.5h",
                           "15 m", "1d", "8785h", "99999999999999999999s", "Indefinitely"}) {
    EXPECT_EQ(parseAwakeDuration(text), std::nullopt) << text;
  }
}

TEST(AwakeDurationTest, TextsNameTheLength) {
  EXPECT_EQ(awakeDurationText(AwakeDuration{}), "indefinitely");
  EXPECT_EQ(awakeDurationText(AwakeDuration{5415}), "1 h 30 min 15 s");
  EXPECT_EQ(awakeDurationText(AwakeDuration{7200}), "2 h");
}

}  // namespace
}  // namespace korvo
