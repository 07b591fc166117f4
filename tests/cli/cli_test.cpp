#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli_fixture.hpp"

namespace korvo {
namespace {

using nlohmann::json;
using testing_support::Cli;
using testing_support::fixtureRoot;
using testing_support::nowISO;
using testing_support::nowReference;
using testing_support::ProcessResult;
using testing_support::sampleFile;

TEST_F(Cli, ListJsonNamesTheFourWidgetsInGalleryOrder) {
  const ProcessResult result = run({"list", "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json list = json::parse(result.out);
  const json expected = json::parse(R"([
    {"kind": "com.tessmoor.Korvo.memory", "name": "Memory",
     "description": "A recent memory snapshot. Open Korvo for live readings and Keep Awake controls.",
     "families": ["systemSmall", "systemMedium"]},
    {"kind": "com.tessmoor.Korvo.awake", "name": "Keep Awake",
     "description": "Open Korvo to start, extend, or stop a session. This shortcut does not show session status.",
     "families": ["systemSmall"]},
    {"kind": "com.tessmoor.Korvo.usage", "name": "AI Usage",
     "description": "Recent Codex and Claude subscription limits. Enable providers and keep Korvo running to update snapshots.",
     "families": ["systemSmall", "systemMedium"]},
    {"kind": "com.tessmoor.Korvo.temperature", "name": "CPU Temperature",
     "description": "A recent CPU temperature snapshot from Korvo. Enable temperature monitoring in the app.",
     "families": ["systemSmall"]}])");
  EXPECT_EQ(list, expected);
}

TEST_F(Cli, TimelineJsonOfMemoryHoldsOneFreshReadingAndReloadsAfter1800Seconds) {
  const ProcessResult result = run({"timeline", "memory", "--json", "--now", nowISO});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json document = json::parse(result.out);
  EXPECT_EQ(document["widget"], "com.tessmoor.Korvo.memory");
  EXPECT_EQ(document["placeholder"]["date"], nowReference);
  EXPECT_EQ(document["placeholder"]["memory"]["total"], 17'179'869'184u);
  EXPECT_EQ(document["placeholder"]["memory"]["usedFraction"], 0.5245208740234375);
  ASSERT_EQ(document["timeline"]["entries"].size(), 1u);
  const json& entry = document["timeline"]["entries"][0];
  EXPECT_EQ(entry["date"], nowReference);
  EXPECT_EQ(entry["memory"], document["snapshot"]["memory"]);
  EXPECT_NE(entry["memory"]["total"], 17'179'869'184u);
  for (const char* key : {"total", "app", "wired", "compressed", "cached", "swap", "pressure",
                          "timestamp", "used", "available", "usedFraction"}) {
    EXPECT_TRUE(entry["memory"].contains(key)) << key;
  }
  EXPECT_EQ(document["timeline"]["reload"], json::parse(R"({"policy":"after","date":816401700})"));
}

TEST_F(Cli, TimelineJsonOfUsageCarriesTheSharedFileAsItIs) {
  const std::string bytes = testing_support::readFile(sampleFile);
  writeSharedFile(bytes);
  const ProcessResult result = run({"timeline", "usage", "--json", "--now", nowISO});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json document = json::parse(result.out);
  EXPECT_EQ(document["widget"], "com.tessmoor.Korvo.usage");
  EXPECT_EQ(document["snapshot"]["snapshot"], json::parse(bytes));
  ASSERT_EQ(document["timeline"]["entries"].size(), 1u);
  EXPECT_EQ(document["timeline"]["entries"][0]["snapshot"], json::parse(bytes));
  EXPECT_EQ(document["timeline"]["reload"], json::parse(R"({"policy":"after","date":816400800})"));
}

TEST_F(Cli, TimelineJsonWritesDatesInTheirShortestRoundTripForm) {
  // Doubles whose shortest form a generic JSON writer misses (it gives 742502552.2800649).
  writeSharedFile(
      R"({"date":742502552.280065,"temperature":54.5,"temperatureDate":742502552.280065,)"
      R"("temperatureEnabled":true,"codex":{"enabled":false,"isRefreshing":false},)"
      R"("claude":{"enabled":false,"isRefreshing":false}})");
  const ProcessResult result = run({"timeline", "temperature", "--json", "--now", nowISO});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find(R"("date": 742502552.280065,)"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find(R"("temperatureDate": 742502552.280065,)"), std::string::npos);
  EXPECT_EQ(result.out.find("742502552.2800649"), std::string::npos) << result.out;
}

TEST_F(Cli, TimelineJsonWithoutTheFileHasOneEntryWithANullSnapshot) {
  const ProcessResult result = run({"timeline", "temperature", "--json", "--now", nowISO});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json document = json::parse(result.out);
  EXPECT_EQ(document["snapshot"], json::parse(R"({"date":816399900,"snapshot":null})"));
  EXPECT_EQ(document["timeline"]["entries"],
            json::parse(R"([{"date":816399900,"snapshot":null}])"));
}

TEST_F(Cli, TimelinePreviewAnswersTheSnapshotWithSampleData) {
  writeSharedFile(testing_support::readFile(sampleFile));
  const ProcessResult result = run({"timeline", "usage", "--preview", "--json", "--now", nowISO});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json document = json::parse(result.out);
  EXPECT_EQ(document["snapshot"], document["placeholder"]);
  const json& codex = document["snapshot"]["snapshot"]["codex"];
  EXPECT_EQ(codex["snapshot"]["windows"][0]["usedPercent"], 28);
  EXPECT_EQ(codex["snapshot"]["windows"][1]["usedPercent"], 42);
  EXPECT_EQ(codex, document["snapshot"]["snapshot"]["claude"]);
  EXPECT_EQ(document["timeline"]["entries"][0]["snapshot"],
            json::parse(testing_support::readFile(sampleFile)));
}

TEST_F(Cli, TimelineJsonOfAwakeNeverReloads) {
  const ProcessResult result =
      run({"timeline", "com.tessmoor.Korvo.awake", "--json", "--now", nowISO});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json document = json::parse(result.out);
  EXPECT_EQ(
      document["timeline"],
      json::parse(R"({"entries":[{"date":816399900,"memory":null}],"reload":{"policy":"never"}})"));
}

struct RenderCase {
  const char* kind;
  const char* family;
  const char* fullKind;
  const char* familyName;
  double width;
  const char* url;
};

TEST_F(Cli, RenderJsonOfEachWidgetAgainstTheSharedFile) {
  writeSharedFile(testing_support::readFile(sampleFile));
  const RenderCase cases[] = {
      {"memory", "small", "com.tessmoor.Korvo.memory", "systemSmall", 170, "korvo://resources"},
      {"memory", "medium", "com.tessmoor.Korvo.memory", "systemMedium", 364, "korvo://resources"},
      {"awake", "small", "com.tessmoor.Korvo.awake", "systemSmall", 170, "korvo://awake"},
      {"usage", "small", "com.tessmoor.Korvo.usage", "systemSmall", 170, "korvo://usage"},
      {"usage", "medium", "com.tessmoor.Korvo.usage", "systemMedium", 364, "korvo://usage"},
      {"temperature", "small", "com.tessmoor.Korvo.temperature", "systemSmall", 170,
       "korvo://resources"},
  };
  for (const RenderCase& c : cases) {
    SCOPED_TRACE(std::string(c.kind) + " " + c.family);
    const ProcessResult result =
        run({"render", c.kind, "--family", c.family, "--format", "json", "--now", nowISO});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const json document = json::parse(result.out);
    EXPECT_EQ(document["widget"], c.fullKind);
    EXPECT_EQ(document["family"], c.familyName);
    EXPECT_EQ(document["width"], c.width);
    EXPECT_EQ(document["height"], 170);
    EXPECT_EQ(document["url"], c.url);
    EXPECT_TRUE(document["tree"].contains("kind"));
    EXPECT_TRUE(document["tree"].contains("frame"));
  }
}

// Every text drawn in a tree, depth first.
void collectTexts(const json& node, std::vector<std::string>& texts) {
  if (node.contains("text")) texts.push_back(node["text"]);
  if (node.contains("children")) {
    for (const json& child : node["children"]) collectTexts(child, texts);
  }
}

bool drawsText(const json& document, const std::string& wanted) {
  std::vector<std::string> texts;
  collectTexts(document["tree"], texts);
  return std::find(texts.begin(), texts.end(), wanted) != texts.end();
}

TEST_F(Cli, RenderDrawsTheSharedFilesTemperatureAndTheSnapshotFilesOverIt) {
  writeSharedFile(testing_support::readFile(sampleFile));
  const ProcessResult shared =
      run({"render", "temperature", "--format", "json", "--now", "816399900"});
  ASSERT_EQ(shared.exitCode, 0) << shared.err;
  const json fromContainer = json::parse(shared.out);

  std::string other = testing_support::readFile(sampleFile);
  other.replace(other.find("52.5"), 4, "71.5");
  const auto otherPath = scratch.write("other.json", other);
  const ProcessResult overridden = run({"render", "temperature", "--format", "json", "--now",
                                        nowISO, "--snapshot-file", otherPath.string()});
  ASSERT_EQ(overridden.exitCode, 0) << overridden.err;
  const json fromFile = json::parse(overridden.out);
  EXPECT_NE(fromContainer["tree"], fromFile["tree"]);
}

TEST_F(Cli, RenderPlaceholderIgnoresTheMachine) {
  const ProcessResult placeholder =
      run({"render", "usage", "--entry", "placeholder", "--format", "json", "--now", nowISO});
  ASSERT_EQ(placeholder.exitCode, 0) << placeholder.err;
  EXPECT_TRUE(drawsText(json::parse(placeholder.out), "58%")) << placeholder.out;
}

TEST_F(Cli, RenderWritesPNGAndSVG) {
  const auto png = scratch.path() / "memory.png";
  const ProcessResult toFile = run({"render", "memory", "-o", png.string(), "--now", nowISO});
  ASSERT_EQ(toFile.exitCode, 0) << toFile.err;
  const std::string bytes = testing_support::readFile(png);
  ASSERT_GT(bytes.size(), 24u);
  EXPECT_EQ(bytes.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
  // Width and height in the IHDR chunk: 170 points at the default scale of 2.
  EXPECT_EQ(static_cast<unsigned char>(bytes[19]), 340 & 0xff);
  EXPECT_EQ(static_cast<unsigned char>(bytes[18]), 340 >> 8);

  const ProcessResult svg = run({"render", "usage", "--family", "medium", "--format", "svg"});
  ASSERT_EQ(svg.exitCode, 0) << svg.err;
  EXPECT_NE(svg.out.find("<svg"), std::string::npos);
  EXPECT_NE(svg.out.find("364"), std::string::npos);
}

TEST_F(Cli, SnapshotCheckExplainsABrokenFile) {
  const auto broken =
      scratch.write("broken.json", R"({"date": 816399900, "temperatureEnabled": 1})");
  const ProcessResult result = run({"snapshot", "check", broken.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_TRUE(result.out.empty());
  EXPECT_NE(result.err.find(broken.string()), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("temperatureEnabled"), std::string::npos) << result.err;
}

TEST_F(Cli, SnapshotCheckOfTheSharedFileSaysWhyItIsMissing) {
  const ProcessResult result = run({"snapshot", "check"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find(sharedFilePath()), std::string::npos) << result.err;
}

TEST_F(Cli, SnapshotCheckReadsTheSharedFile) {
  writeSharedFile(testing_support::readFile(sampleFile));
  const ProcessResult result = run({"snapshot", "check"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("readable"), std::string::npos);
}

TEST_F(Cli, SnapshotCheckReencodeWritesTheSampleFileByteForByte) {
  const ProcessResult result = run({"snapshot", "check", sampleFile, "--reencode"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, testing_support::readFile(sampleFile));
}

TEST_F(Cli, SnapshotPathIsTheGroupContainersFile) {
  const ProcessResult result = run({"snapshot", "path"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, sharedFilePath() + "\n");
}

TEST_F(Cli, SnapshotPathWithoutAnyDataHomeFails) {
  auto environment = this->environment();
  environment.erase("HOME");
  environment.erase("XDG_DATA_HOME");
  const ProcessResult result = run({"snapshot", "path"}, environment);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_TRUE(result.out.empty());
  EXPECT_FALSE(result.err.empty());
}

TEST_F(Cli, MemoryPrintsALiveReadingWithItsDerivedFigures) {
  const ProcessResult result = run({"memory", "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json reading = json::parse(result.out);
  EXPECT_EQ(reading["used"].get<std::uint64_t>(), reading["app"].get<std::uint64_t>() +
                                                      reading["wired"].get<std::uint64_t>() +
                                                      reading["compressed"].get<std::uint64_t>());
  EXPECT_EQ(reading["available"].get<std::uint64_t>(),
            reading["total"].get<std::uint64_t>() - reading["used"].get<std::uint64_t>());
  const ProcessResult text = run({"memory"});
  ASSERT_EQ(text.exitCode, 0) << text.err;
  for (const char* name : {"total", "app", "wired", "compressed", "cached", "swap", "pressure",
                           "timestamp", "used", "available", "usedFraction"}) {
    EXPECT_NE(text.out.find(name), std::string::npos) << name;
  }
}

TEST_F(Cli, MemoryWithoutAReadableProcFails) {
  auto environment = this->environment();
  environment["KORVO_SYSROOT"] = scratch.path().string();
  const ProcessResult result = run({"memory"}, environment);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_FALSE(result.err.empty());
}

TEST_F(Cli, GalleryRendersEveryWidgetFamilySchemeAndEntryWithAnIndex) {
  const auto directory = scratch.path() / "gallery";
  const ProcessResult result = run({"gallery", "-o", directory.string(), "--now", nowISO});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  // memory 2 families, awake 1, usage 2, temperature 1; light and dark; placeholder and live.
  int pictures = 0;
  for (const auto& file : std::filesystem::directory_iterator(directory)) {
    if (file.path().extension() == ".png") {
      ++pictures;
      const std::string name = file.path().filename().string();
      EXPECT_NE(testing_support::readFile(directory / "index.html").find("\"" + name + "\""),
                std::string::npos)
          << name;
    }
  }
  EXPECT_EQ(pictures, 24);
  EXPECT_NE(result.out.find((directory / "index.html").string()), std::string::npos);
}

struct UsageCase {
  std::vector<std::string> args;
  std::vector<std::string> mentions;  // valid values the message names
};

TEST_F(Cli, UsageErrorsExitWith2AndOneLineNamingTheValidValues) {
  const UsageCase cases[] = {
      {{"render", "battery"}, {"memory", "awake", "usage", "temperature"}},
      {{"timeline", "Memory"}, {"memory", "awake", "usage", "temperature"}},
      {{"timeline"}, {"memory", "awake", "usage", "temperature"}},
      {{"render"}, {"memory", "awake", "usage", "temperature"}},
      {{"render", "awake", "--family", "medium"}, {"small"}},
      {{"render", "temperature", "--family", "medium"}, {"small"}},
      {{"render", "memory", "--family", "large"}, {"small", "medium"}},
      {{"render", "memory", "--format", "gif"}, {"png", "svg", "json", "tree"}},
      {{"render", "memory", "--entry", "latest"}, {"placeholder", "snapshot", "timeline"}},
      {{"render", "memory", "--appearance", "sepia"}, {"light", "dark"}},
      {{"render", "memory", "--rendering", "vibrant"}, {"full-color", "accented"}},
      {{"render", "memory", "--accent", "teal"}, {"#RRGGBB"}},
      {{"render", "memory", "--now", "tomorrow"}, {"ISO 8601", "Unix seconds"}},
      {{"render", "memory", "--scale", "0"}, {"above 0"}},
      {{"render", "memory", "--bogus"}, {"--family", "--format"}},
      {{"list", "--yaml"}, {"--json"}},
      {{"snapshot"}, {"path", "check"}},
      {{}, {"list", "timeline", "render", "gallery", "snapshot", "memory"}},
      {{"draw"}, {}},
  };
  for (const UsageCase& c : cases) {
    std::string joined;
    for (const auto& arg : c.args) joined += arg + " ";
    SCOPED_TRACE(joined);
    const ProcessResult result = run(c.args);
    EXPECT_EQ(result.exitCode, 2);
    ASSERT_FALSE(result.err.empty());
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
    for (const auto& mention : c.mentions) {
      EXPECT_NE(result.err.find(mention), std::string::npos) << result.err;
    }
  }
}

TEST_F(Cli, EverySubcommandExplainsItself) {
  for (const std::vector<std::string>& args :
       std::vector<std::vector<std::string>>{{"--help"},
                                             {"list", "--help"},
                                             {"timeline", "--help"},
                                             {"render", "--help"},
                                             {"gallery", "--help"},
                                             {"snapshot", "--help"},
                                             {"snapshot", "check", "--help"},
                                             {"memory", "--help"}}) {
    const ProcessResult result = run(args);
    EXPECT_EQ(result.exitCode, 0) << args.front();
    EXPECT_NE(result.out.find("Usage"), std::string::npos) << args.front();
  }
}

}  // namespace
}  // namespace korvo
