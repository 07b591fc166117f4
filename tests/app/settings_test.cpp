#include "app/settings.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/exit_codes.hpp"

namespace korvo {
namespace {

using testing::HasSubstr;

TEST(SettingsTest, MissingKeysTakeTheirDefaultsAndUnknownKeysAreIgnored) {
  const auto settings = parseSettings(R"({"future":{"x":1}})");
  ASSERT_TRUE(std::holds_alternative<Settings>(settings));
  EXPECT_EQ(std::get<Settings>(settings), Settings{});
  EXPECT_EQ(Settings{}.publishSeconds, 60);
  EXPECT_EQ(Settings{}.awakeMinutes, 60);
  EXPECT_EQ(Settings{}.agentIdleMinutes, 5);
  EXPECT_TRUE(Settings{}.awakeWhileAgentsWork && Settings{}.agentNotices);
  EXPECT_TRUE(Settings{}.temperature && Settings{}.codex && Settings{}.claude);
  EXPECT_EQ(Settings{}.alertPercents, (std::vector<int>{80, 95}));
  EXPECT_EQ(Settings{}.temperatureAlert, 95);
  EXPECT_EQ(Settings{}.temperatureUnit, TemperatureUnit::celsius);
}

TEST(SettingsTest, AnEmptyListOfThresholdsMeansNoUsageAlerts) {
  EXPECT_TRUE(std::get<Settings>(parseSettings(R"({"alertPercents":[]})")).alertPercents.empty());
}

TEST(SettingsTest, EveryKeyIsRead) {
  const auto settings =
      parseSettings(R"({"temperature":false,"codex":false,"claude":false,"codexHome":"/srv/codex",)"
                    R"("publishSeconds":5,"awakeMinutes":90,"memoryDisplayMode":"usedGB",)"
                    R"("waybarSignal":8,"codexLive":false,"codexLiveMinutes":1440,)"
                    R"("codexCommand":"/opt/codex/bin/codex","awakeWhileAgentsWork":false,)"
                    R"("agentIdleMinutes":240,"agentNotices":false,"alertPercents":[95,50,95],)"
                    R"("temperatureAlert":0,"temperatureUnit":"F"})");
  const Settings expected{false,
                          false,
                          false,
                          "/srv/codex",
                          5,
                          90,
                          DisplayMode::usedGB,
                          8,
                          false,
                          1440,
                          "/opt/codex/bin/codex",
                          false,
                          240,
                          false,
                          {50, 95},
                          0,
                          TemperatureUnit::fahrenheit};
  EXPECT_EQ(std::get<Settings>(settings), expected);
}

TEST(SettingsTest, BadDocumentsNameTheirFault) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "empty"},
      {"{", "not JSON"},
      {"[]", "expected object"},
      {R"({"temperature":1})", "temperature"},
      {R"({"codex":"yes"})", "codex"},
      {R"({"publishSeconds":4})", "publishSeconds must be a whole number in 5–3600"},
      {R"({"publishSeconds":3601})", "publishSeconds"},
      {R"({"publishSeconds":60.5})", "publishSeconds"},
      {R"({"awakeMinutes":0})", "awakeMinutes"},
      {R"({"agentIdleMinutes":0})", "agentIdleMinutes must be a whole number in 1–240"},
      {R"({"agentIdleMinutes":241})", "agentIdleMinutes"},
      {R"({"awakeWhileAgentsWork":"on"})", "awakeWhileAgentsWork"},
      {R"({"agentNotices":0})", "agentNotices"},
      {R"({"waybarSignal":31})", "waybarSignal must be a whole number in 0–30"},
      {R"({"memoryDisplayMode":"percent"})", "memoryDisplayMode must be one of usedPercent"},
      {R"({"codexHome":"relative/codex"})", "codexHome must be an absolute path"},
      {R"({"claude":true,"claude":false})", "duplicate key claude"},
      {R"({"codexLive":"on"})", "codexLive"},
      {R"({"codexLiveMinutes":0})", "codexLiveMinutes must be a whole number in 1–1440"},
      {R"({"codexLiveMinutes":1441})", "codexLiveMinutes"},
      {R"({"codexCommand":""})", "codexCommand must not be empty"},
      {R"({"codexCommand":7})", "codexCommand"},
      {R"({"alertPercents":80})", "alertPercents must be an array of whole numbers in 1–100"},
      {R"({"alertPercents":[0]})", "alertPercents must be a whole number in 1–100"},
      {R"({"alertPercents":[101]})", "alertPercents"},
      {R"({"alertPercents":["80"]})", "alertPercents"},
      {R"({"temperatureAlert":151})", "temperatureAlert must be a whole number in 0–150"},
      {R"({"temperatureUnit":"K"})", "temperatureUnit must be one of C, F"},
  };
  for (const auto& [document, fault] : cases) {
    const auto settings = parseSettings(document);
    ASSERT_TRUE(std::holds_alternative<DecodeFailure>(settings)) << document;
    EXPECT_THAT(std::get<DecodeFailure>(settings).reason, HasSubstr(fault)) << document;
  }
}

TEST(SettingsTest, CommandLineValuesBecomeJsonValuesOfTheirKey) {
  EXPECT_EQ(settingValue("temperature", "false"), false);
  EXPECT_EQ(settingValue("claude", "true"), true);
  EXPECT_EQ(settingValue("publishSeconds", "3600"), 3600);
  EXPECT_EQ(settingValue("awakeMinutes", "15"), 15);
  EXPECT_EQ(settingValue("awakeWhileAgentsWork", "false"), false);
  EXPECT_EQ(settingValue("agentIdleMinutes", "240"), 240);
  EXPECT_EQ(settingValue("agentNotices", "true"), true);
  EXPECT_EQ(settingValue("memoryDisplayMode", "availableGB"), "availableGB");
  EXPECT_EQ(settingValue("codexHome", "/srv/codex"), "/srv/codex");
  EXPECT_TRUE(settingValue("codexHome", "").is_null());
  EXPECT_EQ(settingValue("codexLive", "false"), false);
  EXPECT_EQ(settingValue("codexLiveMinutes", "30"), 30);
  EXPECT_EQ(settingValue("codexCommand", "/opt/codex/bin/codex"), "/opt/codex/bin/codex");
  EXPECT_EQ(settingValue("alertPercents", "95,70"), nlohmann::ordered_json::array({70, 95}));
  EXPECT_EQ(settingValue("alertPercents", ""), nlohmann::ordered_json::array());
  // As a list is written in prose, and as the preferences show it.
  EXPECT_EQ(settingValue("alertPercents", " 80, 95 "), nlohmann::ordered_json::array({80, 95}));
  EXPECT_EQ(settingValue("alertPercents", "  "), nlohmann::ordered_json::array());
  EXPECT_EQ(settingValue("temperatureAlert", "0"), 0);
  EXPECT_EQ(settingValue("temperatureUnit", "F"), "F");
}

TEST(SettingsTest, BadCommandLineValuesAreUsageErrorsNamingTheValidValues) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"temperature", "yes", "valid: true, false"},
      {"publishSeconds", "4", "5–3600"},
      {"publishSeconds", "60s", "5–3600"},
      {"awakeMinutes", "", "1–1440"},
      {"agentIdleMinutes", "0", "1–240"},
      {"agentNotices", "no", "valid: true, false"},
      {"memoryDisplayMode", "used", "valid: usedPercent, usedGB, availablePercent"},
      {"codexHome", "codex", "not an absolute path"},
      {"codexLiveMinutes", "0", "1–1440"},
      {"codexLive", "1", "valid: true, false"},
      {"codexCommand", "", "not a program name or path"},
      {"alertPercents", "80,", "1–100"},
      {"alertPercents", "0", "1–100"},
      {"temperatureAlert", "200", "0–150"},
      {"temperatureUnit", "kelvin", "valid: C, F"},
      {"colour", "red", "valid: temperature, codex, claude, codexHome, publishSeconds"},
  };
  for (const auto& [key, value, hint] : cases) {
    try {
      settingValue(key, value);
      ADD_FAILURE() << key << " " << value << " was accepted";
    } catch (const UsageError& error) {
      EXPECT_THAT(error.what(), HasSubstr(hint)) << key << " " << value;
    }
  }
}

TEST(SettingsTest, TheDocumentListsEveryKeyInOrder) {
  EXPECT_EQ(settingsDocument(Settings{}).dump(),
            R"({"temperature":true,"codex":true,"claude":true,"publishSeconds":60,)"
            R"("awakeMinutes":60,"memoryDisplayMode":"usedPercent","waybarSignal":0,)"
            R"("codexLive":true,"codexLiveMinutes":5,"codexCommand":"codex",)"
            R"("awakeWhileAgentsWork":true,"agentIdleMinutes":5,"agentNotices":true,)"
            R"("alertPercents":[80,95],"temperatureAlert":95,"temperatureUnit":"C"})");
}

}  // namespace
}  // namespace korvo
