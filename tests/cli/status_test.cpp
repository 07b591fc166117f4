#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "app/history_store.hpp"
#include "cli_fixture.hpp"

namespace korvo {
namespace {

using nlohmann::json;
using testing_support::Cli;
using testing_support::nowISO;
using testing_support::nowReference;
using testing_support::ProcessResult;

// The shared file with `codex` and `claude` as given and a temperature read `temperatureAge`
// seconds before the tests' now.
std::string sharedFile(const json& codex, const json& claude, bool temperatureEnabled = true,
                       std::optional<double> temperature = 52.5, double temperatureAge = 10) {
  json document{{"date", nowReference},
                {"temperatureEnabled", temperatureEnabled},
                {"codex", codex},
                {"claude", claude}};
  if (temperature) {
    document["temperature"] = *temperature;
    document["temperatureDate"] = nowReference - temperatureAge;
  }
  return document.dump();
}

// A provider's state with a weekly and a 5-hour window, fetched `age` seconds before now.
json enabledProvider(double weeklyUsed, double fiveHourUsed, double age = 50) {
  return {
      {"enabled", true},
      {"snapshot",
       {{"windows",
         {{{"title", "5-hour"}, {"usedPercent", fiveHourUsed}, {"resetsAt", nowReference + 7200}},
          {{"title", "Weekly"}, {"usedPercent", weeklyUsed}, {"resetsAt", nowReference + 172800}}}},
        {"fetchedAt", nowReference - age}}},
      {"isRefreshing", false}};
}

const json disabledProvider{{"enabled", false}, {"isRefreshing", false}};

class Status : public Cli {
 protected:
  // `status KIND --format waybar` at the tests' now, read back as the JSON object Waybar reads.
  json waybar(const std::string& kind, std::vector<std::string> extra = {}) const {
    std::vector<std::string> args{"status", kind, "--format", "waybar", "--now", nowISO};
    args.insert(args.end(), extra.begin(), extra.end());
    const ProcessResult result = run(args);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out.back(), '\n');
    EXPECT_EQ(result.out.find('\n'), result.out.size() - 1) << "not one line: " << result.out;
    return json::parse(result.out);
  }
  std::string text(const std::string& kind, std::vector<std::string> extra = {}) const {
    std::vector<std::string> args{"status", kind, "--now", nowISO};
    args.insert(args.end(), extra.begin(), extra.end());
    const ProcessResult result = run(args);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return result.out;
  }
};

struct ModeCase {
  const char* mode;
  const char* text;
};

TEST_F(Status, MemoryTextIsTheFigureInEveryDisplayMode) {
  const ModeCase cases[] = {
      {"usedPercent", "50%\n"},           {"usedGB", "7.8 GB\n"},
      {"availablePercent", "50% free\n"}, {"availableGB", "7.8 GB free\n"},
      {"usedOfTotal", "7.8/16 GB\n"},
  };
  for (const auto& [mode, expected] : cases) {
    EXPECT_EQ(text("memory", {"--mode", mode}), expected) << mode;
  }
  EXPECT_EQ(text("memory"), cases[0].text) << "usedPercent is the default";
}

TEST_F(Status, MemoryForWaybarCarriesTheBreakdownThePressureAndTheWholePercentage) {
  const json line = waybar("com.tessmoor.Korvo.memory", {"--mode", "usedOfTotal"});
  EXPECT_EQ(line, json::parse(R"({"text": "7.8/16 GB",
      "tooltip": "7.8 GB of 15.6 GB\nApps 5.4 GB\nWired 2.1 GB\nCompressed 310 MB\nCached 6.0 GB\nSwap 1.1 GB\n7.8 GB available\nElevated pressure",
      "class": "Elevated", "percentage": 50})"));
  // Waybar reads exactly these four keys.
  EXPECT_EQ(line.size(), 4u);
}

TEST_F(Status, MemoryWithoutAReadingIsADashClassedUnavailable) {
  auto environment = this->environment();
  environment["KORVO_SYSROOT"] = scratch.path().string();
  const ProcessResult text = run({"status", "memory"}, environment);
  EXPECT_EQ(text.exitCode, 0);
  EXPECT_EQ(text.out, "—\n");
  const ProcessResult bar = run({"status", "memory", "--format", "waybar"}, environment);
  EXPECT_EQ(bar.exitCode, 0);
  EXPECT_EQ(json::parse(bar.out), json::parse(R"({"text": "—", "tooltip": "Memory: Unavailable",
      "class": "unavailable", "percentage": 0})"));
}

TEST_F(Status, UsageShowsEachEnabledProvidersWeeklyRemainingWithItsWindowsInTheTooltip) {
  writeSharedFile(sharedFile(enabledProvider(42, 28), enabledProvider(29, 60)));
  EXPECT_EQ(text("usage"), "Codex 58% · Claude 71%\n");
  EXPECT_EQ(waybar("usage"), json::parse(R"({"text": "Codex 58% · Claude 71%",
      "tooltip": "Codex · Updated 1:44 AM\nWeekly · 58% left · Resets in 2d 0h\n5-hour · 72% left · Resets in 2h 0m\nClaude · Updated 1:44 AM\nWeekly · 71% left · Resets in 2d 0h\n5-hour · 40% left · Resets in 2h 0m",
      "class": "", "percentage": 58})"));
}

TEST_F(Status, UsageOfTheSampleFileLeavesTheDisabledProviderOutOfTheFigure) {
  writeSharedFile(testing_support::readFile(testing_support::sampleFile));
  const json line = waybar("usage");
  EXPECT_EQ(line["text"], "Codex 58%");
  EXPECT_EQ(line["class"], "");
  EXPECT_EQ(line["percentage"], 58);
  EXPECT_NE(line["tooltip"].get<std::string>().find(
                "Claude · Enable in Settings to connect your sign-in."),
            std::string::npos)
      << line["tooltip"];
}

struct UsageCase {
  const char* name;
  std::optional<std::string> file;  // none: no shared file at all
  const char* text;
  const char* cssClass;
  int percentage;
};

TEST_F(Status, UsageWithMissingStaleOrDisabledDataIsClassedForTheBar) {
  const json noWeekly{
      {"enabled", true},
      {"snapshot",
       {{"windows", {{{"title", "5-hour"}, {"usedPercent", 10}}}}, {"fetchedAt", nowReference}}},
      {"isRefreshing", false}};
  const UsageCase cases[] = {
      {"no shared file", std::nullopt, "—", "unavailable", 0},
      {"not JSON", std::string("{not json"), "—", "unavailable", 0},
      {"both disabled", sharedFile(disabledProvider, disabledProvider), "—", "disabled", 0},
      {"an hour old", sharedFile(enabledProvider(42, 28, 3600), disabledProvider), "Codex 58%",
       "stale", 58},
      {"no weekly window", sharedFile(noWeekly, disabledProvider), "Codex —", "unavailable", 0},
      {"lowest weekly wins", sharedFile(enabledProvider(10, 0), enabledProvider(70, 0)),
       "Codex 90% · Claude 30%", "", 30},
  };
  for (const auto& [name, file, expectedText, expectedClass, expectedPercentage] : cases) {
    std::filesystem::remove(sharedFilePath());
    if (file) writeSharedFile(*file);
    const json line = waybar("usage");
    EXPECT_EQ(line["text"], expectedText) << name;
    EXPECT_EQ(line["class"], expectedClass) << name;
    EXPECT_EQ(line["percentage"], expectedPercentage) << name;
    EXPECT_FALSE(line["tooltip"].get<std::string>().empty()) << name;
    // The plain figure, made without the tooltip, is the same figure.
    EXPECT_EQ(text("usage"), std::string(expectedText) + "\n") << name;
  }
}

TEST_F(Status, TemperatureIsTheHottestSensorInWholeDegrees) {
  writeSharedFile(sharedFile(disabledProvider, disabledProvider));
  EXPECT_EQ(text("temperature"), "52°C\n");
  EXPECT_EQ(waybar("temperature"), json::parse(R"({"text": "52°C",
      "tooltip": "Hottest CPU sensor\nUpdated 1:44 AM", "class": "", "percentage": 52})"));
}

struct TemperatureCase {
  const char* name;
  std::optional<std::string> file;
  const char* text;
  const char* cssClass;
};

TEST_F(Status, TemperatureWithoutAFreshReadingSaysWhy) {
  const TemperatureCase cases[] = {
      {"no shared file", std::nullopt, "—", "disabled"},
      {"monitoring off", sharedFile(disabledProvider, disabledProvider, false), "—", "disabled"},
      {"no sensor", sharedFile(disabledProvider, disabledProvider, true, std::nullopt), "—",
       "unavailable"},
      {"read an hour ago", sharedFile(disabledProvider, disabledProvider, true, 61.0, 3600), "61°C",
       "stale"},
  };
  for (const auto& [name, file, expectedText, expectedClass] : cases) {
    std::filesystem::remove(sharedFilePath());
    if (file) writeSharedFile(*file);
    const json line = waybar("temperature");
    EXPECT_EQ(line["text"], expectedText) << name;
    EXPECT_EQ(line["class"], expectedClass) << name;
    EXPECT_EQ(text("temperature"), std::string(expectedText) + "\n") << name;
  }
}

TEST_F(Status, TemperatureFollowsKorvosUnitWhileTheGaugeStaysInCelsius) {
  writeSharedFile(sharedFile(disabledProvider, disabledProvider, true, 37.0));
  dataHome.write(".config/korvo/settings.json", R"({"temperatureUnit":"F"})");
  EXPECT_EQ(text("temperature"), "99°F\n");
  const json line = waybar("temperature");
  EXPECT_EQ(line["text"], "99°F");
  EXPECT_EQ(line["percentage"], 37);
  dataHome.write(".config/korvo/settings.json", R"({"temperatureUnit":"C"})");
  EXPECT_EQ(text("temperature"), "37°C\n");
}

TEST_F(Status, ABadSettingsFileIsNamedOnceAndTheDefaultsCount) {
  writeSharedFile(sharedFile(disabledProvider, disabledProvider, true, 37.0));
  dataHome.write(".config/korvo/settings.json", R"({"temperatureUnit":"K"})");
  const ProcessResult result = run({"status", "temperature", "--now", nowISO});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "37°C\n");
  EXPECT_NE(result.err.find("settings.json"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("temperatureUnit"), std::string::npos) << result.err;
  EXPECT_EQ(testing_support::lines(result.err), 1u) << result.err;
}

struct AlertClassCase {
  const char* name;
  const char* settings;  // korvo's settings file; "" for none
  std::string file;
  json cssClass;
};

TEST_F(Status, UsageWindowsPastTheThresholdsClassTheLineWarningOrCritical) {
  const AlertClassCase cases[] = {
      {"below the first", "", sharedFile(enabledProvider(42, 79), disabledProvider), ""},
      {"a weekly window at the first", "", sharedFile(enabledProvider(80, 10), disabledProvider),
       "warning"},
      {"a 5-hour window at the last", "",
       sharedFile(enabledProvider(10, 0), enabledProvider(20, 95)), "critical"},
      {"stale and past the first", "", sharedFile(enabledProvider(85, 0, 3600), disabledProvider),
       json::array({"stale", "warning"})},
      {"no thresholds", R"({"alertPercents":[]})",
       sharedFile(enabledProvider(99, 99), disabledProvider), ""},
      {"one threshold is the last", R"({"alertPercents":[60]})",
       sharedFile(enabledProvider(61, 0), disabledProvider), "critical"},
      {"the user's order does not matter", R"({"alertPercents":[90,50]})",
       sharedFile(enabledProvider(55, 0), disabledProvider), "warning"},
  };
  for (const auto& [name, settings, file, expectedClass] : cases) {
    std::filesystem::remove(dataHome.path() / ".config/korvo/settings.json");
    if (*settings != '\0') dataHome.write(".config/korvo/settings.json", settings);
    writeSharedFile(file);
    EXPECT_EQ(waybar("usage")["class"], expectedClass) << name;
  }
}

TEST_F(Status, TheUsageTooltipCarriesEachWindowsForecastFromKorvosHistory) {
  writeSharedFile(sharedFile(enabledProvider(40, 28), disabledProvider));
  const Date now = Date{nowReference};
  std::ostringstream log;
  auto history = HistoryStore::open(dataHome.path() / ".local/state/korvo/history.sqlite3", log,
                                    now, std::chrono::seconds(1));
  ASSERT_TRUE(history) << log.str();
  // The weekly window rose 10 points in the last hour: its 60 left last six hours, not the two days
  // to its reset.
  std::vector<HistoryRow> rows;
  for (int minute = 60; minute >= 0; minute -= 10) {
    rows.push_back({now.addingSeconds(-60.0 * minute), "codex.Weekly", 40 - minute / 6.0,
                    Date{nowReference + 172800}});
  }
  ASSERT_TRUE(history->record(rows));
  const std::string tooltip = waybar("usage")["tooltip"];
  EXPECT_NE(tooltip.find("Weekly · 60% left · Resets in 2d 0h · at this pace runs out 7:45 AM"),
            std::string::npos)
      << tooltip;
  EXPECT_NE(tooltip.find("5-hour · 72% left · Resets in 2h 0m\n"), std::string::npos) << tooltip;
}

struct RefusalCase {
  std::vector<std::string> args;
  const char* named;  // what the one-line message must name
};

TEST_F(Status, KeepAwakeABadModeOrFormatIsAUsageError) {
  const RefusalCase cases[] = {
      {{"status", "awake"}, "valid kinds: memory, usage, temperature"},
      {{"status", "memory", "--mode", "UsedGB"}, "--mode"},
      {{"status", "memory", "--format", "json"}, "--format"},
      {{"status", "disk"}, "valid kinds"},
  };
  for (const auto& [args, named] : cases) {
    const ProcessResult result = run(args);
    EXPECT_EQ(result.exitCode, 2) << args[1];
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(named), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
  }
}

}  // namespace
}  // namespace korvo
