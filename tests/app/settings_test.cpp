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
}

TEST(SettingsTest, EveryKeyIsRead) {
  const auto settings =
      parseSettings(R"({"temperature":false,"codex":false,"claude":false,"codexHome":"/srv/codex",)"
                    R"("publishSeconds":5,"awakeMinutes":90,"memoryDisplayMode":"usedGB",)"
                    R"("waybarSignal":8,"awakeWhileAgentsWork":false,"agentIdleMinutes":240,)"
                    R"("agentNotices":false})");
  const Settings expected{false, false, false, "/srv/codex", 5, 90, DisplayMode::usedGB,
                          8,     false, 240,   false};
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
            R"("awakeWhileAgentsWork":true,"agentIdleMinutes":5,"agentNotices":true})");
}

}  // namespace
}  // namespace korvo
