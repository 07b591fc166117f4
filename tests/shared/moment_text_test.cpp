#include "shared/moment_text.hpp"

#include <gtest/gtest.h>

namespace korvo {
namespace {

TEST(MomentText, ReadsISO8601WithAZoneAndUnixSeconds) {
  const struct {
    const char* text;
    double unixSeconds;
  } cases[] = {
      {"2026-11-15T01:45:00Z", 1'794'707'100},
      {"2026-11-15T01:45Z", 1'794'707'100},
      {"2026-11-15T02:45:00+01:00", 1'794'707'100},
      {"2026-11-14T20:15:00-0530", 1'794'707'100},
      {"2026-11-15T01:45:00.5Z", 1'794'707'100.5},
      {"2001-01-01T00:00:00Z", 978'307'200},
      {"1970-01-01T00:00:00Z", 0},
      {"2024-02-29T12:00:00Z", 1'709'208'000},
      {"1794707100", 1'794'707'100},
      {"1794707100.25", 1'794'707'100.25},
      {"0", 0},
      {"-86400", -86'400},
  };
  for (const auto& c : cases) {
    const auto moment = parseMoment(c.text);
    ASSERT_TRUE(moment.has_value()) << c.text;
    EXPECT_EQ(moment->unixSeconds(), c.unixSeconds) << c.text;
  }
}

TEST(MomentText, RefusesEverythingElse) {
  for (const char* text :
       {"", "yesterday", "2026-11-15", "2026-11-15T01:45:00", "2026-13-01T00:00:00Z",
        "2026-02-29T00:00:00Z", "2026-11-31T00:00:00Z", "2026-11-15T24:00:00Z",
        "2026-11-15T01:60:00Z", "2026-11-15T01:45:00Zjunk", "2026-11-15T01:45:00.Z", "1794707100s",
        "nan", "inf", "1e400", " 1794707100"}) {
    EXPECT_FALSE(parseMoment(text).has_value()) << text;
  }
}

TEST(MomentText, WritesMomentsAsUTCWithMillisecondsOnlyWhenPresent) {
  EXPECT_EQ(isoMoment(Date::fromUnixSeconds(1'794'707'100)), "2026-11-15T01:45:00Z");
  EXPECT_EQ(isoMoment(Date::fromUnixSeconds(1'794'707'100.25)), "2026-11-15T01:45:00.250Z");
  EXPECT_EQ(isoMoment(Date{0}), "2001-01-01T00:00:00Z");
}

}  // namespace
}  // namespace korvo
