#include "shared/widget_snapshot_json.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "shared/json_reader.hpp"
#include "support/files.hpp"
#include "support/sample_snapshot.hpp"

namespace korvo {
namespace {

using testing::HasSubstr;

std::string failureOf(const Decoded<WidgetSnapshot>& decoded) {
  if (const auto* failure = std::get_if<DecodeFailure>(&decoded)) return failure->reason;
  return "(decoded)";
}

const std::string minimal =
    R"({"date":816399900,"temperatureEnabled":false,"codex":{"enabled":false,"isRefreshing":false},"claude":{"enabled":false,"isRefreshing":false}})";

TEST(WidgetSnapshotJsonTest, ExampleFileRoundTripsByteForByte) {
  const std::string bytes = testing_support::readFile(testing_support::exampleSnapshotPath());
  ASSERT_FALSE(bytes.empty());
  ASSERT_NE(bytes.back(), '\n');
  const auto decoded = decodeWidgetSnapshot(bytes);
  ASSERT_TRUE(std::holds_alternative<WidgetSnapshot>(decoded)) << failureOf(decoded);
  EXPECT_EQ(encodeWidgetSnapshot(std::get<WidgetSnapshot>(decoded)), bytes);
}

TEST(WidgetSnapshotJsonTest, ExampleFileDecodesToItsFields) {
  const auto decoded =
      decodeWidgetSnapshot(testing_support::readFile(testing_support::exampleSnapshotPath()));
  const auto& snapshot = std::get<WidgetSnapshot>(decoded);
  EXPECT_EQ(snapshot.date, Date{816399900});
  EXPECT_EQ(snapshot.temperature, 52.5);
  EXPECT_EQ(snapshot.temperatureDate, Date{816399890});
  EXPECT_TRUE(snapshot.temperatureEnabled);
  ASSERT_TRUE(snapshot.codex.snapshot);
  EXPECT_EQ(snapshot.codex.snapshot->windows[0], (UsageWindow{"5-hour", 28, Date{816407100}}));
  EXPECT_EQ(snapshot.claude, UsageState{});
}

TEST(WidgetSnapshotJsonTest, WithoutTemperatureBothAbsentAndLeftOutAgain) {
  const auto decoded = decodeWidgetSnapshot(minimal);
  const auto& snapshot = std::get<WidgetSnapshot>(decoded);
  EXPECT_FALSE(snapshot.temperature);
  EXPECT_FALSE(snapshot.temperatureDate);
  EXPECT_EQ(encodeWidgetSnapshot(snapshot), minimal);
}

TEST(WidgetSnapshotJsonTest, EmptyObjectIsUnreadable) {
  EXPECT_EQ(failureOf(decodeWidgetSnapshot("{}")), "missing key date");
}

TEST(WidgetSnapshotJsonTest, MissingTemperatureEnabledIsUnreadableDespiteItsDefault) {
  EXPECT_EQ(
      failureOf(decodeWidgetSnapshot(
          R"({"date":1,"codex":{"enabled":false,"isRefreshing":false},"claude":{"enabled":false,"isRefreshing":false}})")),
      "missing key temperatureEnabled");
}

TEST(WidgetSnapshotJsonTest, MissingKeyDeepInsideNamesItsPath) {
  EXPECT_EQ(
      failureOf(decodeWidgetSnapshot(
          R"({"date":1,"temperatureEnabled":false,"codex":{"enabled":false},"claude":{"enabled":false,"isRefreshing":false}})")),
      "missing key codex.isRefreshing");
}

TEST(WidgetSnapshotJsonTest, NumbersIntegralBelowTwoToThe53WithoutFractionOthersShortest) {
  const struct {
    double value;
    const char* text;
  } cases[] = {
      {816399900, "816399900"},
      {52.5, "52.5"},
      {0.1, "0.1"},
      {-3, "-3"},
      {9007199254740991.0, "9007199254740991"},
      {1e300, "1e+300"},
      {816399900.123456789, "816399900.1234568"},
      {5e-324, "5e-324"},
  };
  for (const auto& c : cases) {
    WidgetSnapshot snapshot{Date{0}, c.value, std::nullopt, false, {}, {}};
    const auto encoded = encodeWidgetSnapshot(snapshot);
    ASSERT_TRUE(encoded);
    EXPECT_THAT(*encoded, HasSubstr(std::string("\"temperature\":") + c.text + ",")) << c.value;
  }
}

TEST(WidgetSnapshotJsonTest, NonFiniteNumbersFailToEncode) {
  for (const double bad : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_FALSE(encodeWidgetSnapshot({Date{0}, bad, std::nullopt, false, {}, {}}));
    EXPECT_FALSE(encodeWidgetSnapshot({Date{bad}, std::nullopt, std::nullopt, false, {}, {}}));
    EXPECT_FALSE(encodeWidgetSnapshot({Date{0}, std::nullopt, Date{bad}, false, {}, {}}));
  }
}

TEST(WidgetSnapshotJsonTest, RoundTripKeepsEveryDoubleExactly) {
  std::mt19937_64 random(7);
  std::uniform_int_distribution<std::uint64_t> bits;
  for (int i = 0; i < 2000; ++i) {
    double values[4];
    for (double& value : values) {
      do {
        const std::uint64_t raw = bits(random);
        std::memcpy(&value, &raw, sizeof value);
      } while (!std::isfinite(value));
    }
    const WidgetSnapshot snapshot{
        Date{values[0]},
        values[1],
        Date{values[2]},
        true,
        {true, UsageSnapshot{{{"w", values[3], Date{values[0] / 3}}}, Date{values[1] * 0.5}, "s"},
         std::nullopt, false},
        {}};
    const auto encoded = encodeWidgetSnapshot(snapshot);
    ASSERT_TRUE(encoded);
    const auto decoded = decodeWidgetSnapshot(*encoded);
    ASSERT_TRUE(std::holds_alternative<WidgetSnapshot>(decoded)) << *encoded;
    EXPECT_EQ(std::get<WidgetSnapshot>(decoded), snapshot) << *encoded;
  }
}

// A leading UTF-8 byte-order mark carries no data, and some editors add one when a user saves
// the file by hand, so it is skipped.
TEST(WidgetSnapshotJsonTest, LeadingByteOrderMarkIsSkipped) {
  const auto decoded = decodeWidgetSnapshot("\xEF\xBB\xBF" + minimal);
  EXPECT_TRUE(std::holds_alternative<WidgetSnapshot>(decoded)) << failureOf(decoded);
}

TEST(WidgetSnapshotJsonTest, ByteOrderMarkAnywhereElseIsNotJson) {
  EXPECT_THAT(failureOf(decodeWidgetSnapshot(" \xEF\xBB\xBF" + minimal)), HasSubstr("not JSON"));
}

// Parsers disagree on which of two equal keys counts; refusing the file keeps every reader in
// agreement with the host's intent, whatever it was.
TEST(WidgetSnapshotJsonTest, DuplicateKeyMakesTheFileUnreadable) {
  EXPECT_EQ(failureOf(decodeWidgetSnapshot(R"({"date":1,"date":2})")), "duplicate key date");
  EXPECT_EQ(
      failureOf(decodeWidgetSnapshot(
          R"({"date":1,"temperatureEnabled":false,"codex":{"enabled":false,"enabled":true,"isRefreshing":false},"claude":{"enabled":false,"isRefreshing":false}})")),
      "duplicate key codex.enabled");
  EXPECT_EQ(failureOf(decodeWidgetSnapshot(R"({"x":[{},{"a":1,"a":1}],"date":1})")),
            "duplicate key x[1].a");
}

TEST(WidgetSnapshotJsonTest, NestingAHundredThousandLevelsDeepIsRefusedWithoutCrashing) {
  for (const char* open : {"[", "{\"a\":"}) {
    std::string deep = R"({"date":1,"x":)";
    for (int i = 0; i < 100000; ++i) deep += open;
    EXPECT_EQ(failureOf(decodeWidgetSnapshot(deep)),
              "nesting deeper than 512 levels at byte " +
                  std::to_string(14 + std::string(open).size() * 511 + 1));
  }
}

TEST(WidgetSnapshotJsonTest, NestingUpToTheLimitIsAccepted) {
  const std::size_t arrays = json_reader::maxNestingDepth - 1;
  const std::string document =
      R"({"x":)" + std::string(arrays, '[') + std::string(arrays, ']') + "," + minimal.substr(1);
  const auto decoded = decodeWidgetSnapshot(document);
  EXPECT_TRUE(std::holds_alternative<WidgetSnapshot>(decoded)) << failureOf(decoded);
}

TEST(WidgetSnapshotJsonTest, BracketsInsideStringsDoNotCountAsNesting) {
  std::string document = R"({"x":")" + std::string(100000, '[') + R"(\"[[",)" + minimal.substr(1);
  const auto decoded = decodeWidgetSnapshot(document);
  EXPECT_TRUE(std::holds_alternative<WidgetSnapshot>(decoded)) << failureOf(decoded);
}

struct PartsCase {
  const char* name;
  std::string json;
  bool temperature;  // whether each part comes through
  bool codex;
  bool claude;
};

const std::string claudeFigures =
    R"({"enabled":true,"snapshot":{"windows":[{"title":"5-hour","usedPercent":28}],)"
    R"("fetchedAt":816399800,"source":"Claude Code"},"isRefreshing":false})";

TEST(WidgetSnapshotJsonTest, PartsThatDecodeOnTheirOwnComeThroughWhenTheWholeDoesNot) {
  const PartsCase cases[] = {
      {"whole",
       R"({"date":1,"temperature":40,"temperatureEnabled":true,"codex":{"enabled":false,"isRefreshing":false},"claude":)" +
           claudeFigures + "}",
       true, true, true},
      {"date missing",
       R"({"temperatureEnabled":true,"codex":{"enabled":false,"isRefreshing":false},"claude":)" +
           claudeFigures + "}",
       true, true, true},
      {"codex malformed",
       R"({"date":1,"temperatureEnabled":true,"codex":{"enabled":"yes"},"claude":)" +
           claudeFigures + "}",
       true, false, true},
      {"temperature a string",
       R"({"date":1,"temperature":"hot","temperatureEnabled":true,"claude":)" + claudeFigures + "}",
       false, false, true},
      {"claude malformed",
       R"({"date":1,"temperatureEnabled":false,"codex":{"enabled":false,"isRefreshing":false},"claude":{"enabled":1}})",
       true, true, false},
      {"not an object", "[" + claudeFigures + "]", false, false, false},
      {"not JSON", "{\"claude\":" + claudeFigures, false, false, false},
  };
  for (const auto& [name, json, temperature, codex, claude] : cases) {
    SCOPED_TRACE(name);
    const auto parts = decodeWidgetSnapshotParts(json);
    EXPECT_EQ(parts.temperature.has_value(), temperature);
    EXPECT_EQ(parts.codex.has_value(), codex);
    ASSERT_EQ(parts.claude.has_value(), claude);
    if (claude) {
      ASSERT_TRUE(parts.claude->snapshot);
      EXPECT_EQ(parts.claude->snapshot->windows,
                (std::vector<UsageWindow>{{"5-hour", 28, std::nullopt}}));
    }
  }
}

TEST(WidgetSnapshotJsonTest, TheTemperaturePartKeepsItsReadingAndMoment) {
  const auto parts = decodeWidgetSnapshotParts(
      R"({"temperature":61.5,"temperatureDate":816399800,"temperatureEnabled":true})");
  EXPECT_EQ(parts.temperature, (WidgetSnapshotParts::Temperature{61.5, Date{816399800}, true}));
}

}  // namespace
}  // namespace korvo
