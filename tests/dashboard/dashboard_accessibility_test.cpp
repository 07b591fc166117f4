#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "support/accessible_expectations.hpp"
#include "support/dashboard_environment.hpp"
#include "support/desktop_harness.hpp"
#include "support/korvo_process.hpp"

// The dashboard read as a screen reader reads it: through AT-SPI, on a private session bus with
// its own accessibility bus. Its cards read as the desktop's widgets do, against the tree the
// command line lays out for the same widget and entry.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using namespace desktop_test;
using Json = nlohmann::json;

class DashboardAccessibility : public testing::Test {
 protected:
  void SetUp() override {
    server = std::make_unique<XServer>(1280, 1024, folder.path());
    // Asking the bus for the accessibility bus starts one, as on a desktop.
    bus = std::make_unique<ActivatingSessionBus>(folder.path(), server->display());
    environment =
        dashboard_test::dashboardEnvironment(folder.path(), server->display(), bus->address());
    // Read by a screen reader: the accessibility bridge joins the bus.
    environment.erase("NO_AT_BRIDGE");
    // korvo's entry as the default handler: the card's link opens its tab through it.
    dashboard_test::registerKorvoAsHandler(folder.path());
    reader = {{"PATH", "/usr/bin:/bin"},
              {"HOME", (folder.path() / "home").string()},
              {"DISPLAY", server->display()},
              {"DBUS_SESSION_BUS_ADDRESS", environment["DBUS_SESSION_BUS_ADDRESS"]}};
  }

  void TearDown() override {
    service.reset();
    bus.reset();
    server.reset();
  }

  std::string page() const {
    const auto document = Json::parse(readFile(folder.path() / "dashboard.json"), nullptr, false);
    return document.is_object() && document.value("mapped", false) ? document.value("page", "")
                                                                   : "";
  }

  // The card named `name` with its children as AT-SPI reports them; null until it is there.
  Json readCard(const std::string& name) const {
    const auto result = runCommand({"/usr/bin/python3", KORVO_A11Y_READER, "--application",
                                    "com.tessmoor.Korvo", "--card", name},
                                   reader);
    return result.exitStatus == 0 ? Json::parse(result.output, nullptr, false) : Json();
  }

  // The tree the command line lays out for the memory widget's medium card, now, at the
  // dashboard's one pixel per point.
  Json memoryTree() const {
    const auto rendered = testing_support::runProgram(
        KORVO_BINARY,
        {"render", "memory", "--family", "medium", "--format", "json", "--scale", "1"},
        environment);
    return rendered.exitCode == 0 ? Json::parse(rendered.out, nullptr, false)["tree"] : Json();
  }

  std::vector<std::string> names(const Json& card) const {
    std::vector<std::string> out;
    for (const auto& child : card.value("children", Json::array())) out.push_back(child["name"]);
    return out;
  }

  TemporaryDirectory folder;
  std::unique_ptr<XServer> server;
  std::unique_ptr<ActivatingSessionBus> bus;
  Environment environment;
  Environment reader;
  std::unique_ptr<Process> service;
};

TEST_F(DashboardAccessibility, TheMemoryCardReadsAsItsLaidOutTreeAndItsLinkOpensKeepAwake) {
  service = std::make_unique<Process>(
      std::vector<std::string>{KORVO_APP_BINARY, "open", "korvo://resources"}, environment,
      folder.path() / "service.out", folder.path() / "service.err");
  ASSERT_TRUE(waitFor([&] { return page() == "memory"; }))
      << readFile(folder.path() / "service.err");

  // The card's "Updated" time and the command line's may straddle a minute: read both until
  // they agree on every name.
  Json card;
  Json tree;
  const bool agreed = waitFor([&] {
    card = readCard("Memory");
    tree = memoryTree();
    return card.is_object() && tree.is_object() && names(card) == readableNames(tree);
  });
  ASSERT_TRUE(agreed) << "the card was never read as laid out; service:\n"
                      << readFile(folder.path() / "service.err") << card.dump(1) << tree.dump(1);
  EXPECT_EQ(card["role"], "panel");
  EXPECT_EQ(card["bounds"]["width"], 364);
  EXPECT_EQ(card["bounds"]["height"], 170);
  expectReadsAsTree(card, tree, "memory medium");

  // The page shows a new reading every second; read across a few of them, the card keeps its
  // children and the toolkit has nothing to complain about.
  for (int read = 0; read < 3; ++read) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    EXPECT_EQ(readCard("Memory").value("children", Json::array()).size(), card["children"].size());
  }
  EXPECT_EQ(readFile(folder.path() / "service.err").find("CRITICAL"), std::string::npos)
      << readFile(folder.path() / "service.err");

  // The link inside the card opens Keep Awake's tab, as a click on it would.
  ASSERT_EQ(runCommand({"/usr/bin/python3", KORVO_A11Y_READER, "--application",
                        "com.tessmoor.Korvo", "--card", "Memory", "Keep Awake"},
                       reader)
                .exitStatus,
            0);
  EXPECT_TRUE(waitFor([&] { return page() == "awake"; }))
      << readFile(folder.path() / "service.err");
}

// The AI tab's card reads what it draws, and reads anew when korvo publishes.
TEST_F(DashboardAccessibility, TheUsageCardReadsWhatKorvoPublishes) {
  // No Codex sessions yet: the service's first publish finds no figures.
  fs::create_directories(folder.path() / "codex");
  environment["CODEX_HOME"] = (folder.path() / "codex").string();
  service = std::make_unique<Process>(
      std::vector<std::string>{KORVO_APP_BINARY, "open", "korvo://usage"}, environment,
      folder.path() / "service.out", folder.path() / "service.err");
  ASSERT_TRUE(waitFor([&] { return page() == "ai"; })) << readFile(folder.path() / "service.err");
  const auto reads = [&](const std::string& name) {
    return waitFor([&] {
      const auto shown = names(readCard("AI Usage"));
      return std::find(shown.begin(), shown.end(), name) != shown.end();
    });
  };
  EXPECT_TRUE(reads("Usage unavailable")) << readCard("AI Usage").dump(1);

  // Codex's fixture rollout, published: its weekly window has 58 % left.
  environment["CODEX_HOME"] = KORVO_FIXTURES_DIR "/codex";
  const auto publish = testing_support::runProgram(KORVO_APP_BINARY, {"publish"}, environment);
  ASSERT_EQ(publish.exitCode, 0) << publish.err;
  EXPECT_TRUE(reads("58")) << readCard("AI Usage").dump(1);
}

// A dark GTK theme chosen by name, with no dark preference anywhere, darkens the card with the
// window around it.
TEST_F(DashboardAccessibility, UnderADarkThemeTheCardIsDarkToo) {
  environment["GTK_THEME"] = "Adwaita:dark";
  service = std::make_unique<Process>(
      std::vector<std::string>{KORVO_APP_BINARY, "open", "korvo://memory"}, environment,
      folder.path() / "service.out", folder.path() / "service.err");
  ASSERT_TRUE(waitFor([&] { return page() == "memory"; }))
      << readFile(folder.path() / "service.err");
  Json card;
  ASSERT_TRUE(waitFor([&] {
    card = readCard("Memory");
    return card.is_object();
  }));
  const auto& bounds = card["bounds"];
  const fs::path picture = folder.path() / "dark.png";
  // Inside the card's left edge, clear of its rounded corners and its texts.
  const int x = bounds["x"].get<int>() + 6;
  const int y = bounds["y"].get<int>() + bounds["height"].get<int>() / 2;
  std::string colour;
  ASSERT_TRUE(waitFor([&] {
    screenshot(server->display(), picture);
    colour = pixel(picture, x, y);
    return colour.size() == 6;
  }));
  const auto channel = [&](int at) { return std::stoi(colour.substr(at, 2), nullptr, 16); };
  const double luminance = (0.2126 * channel(0) + 0.7152 * channel(2) + 0.0722 * channel(4)) / 255;
  EXPECT_LT(luminance, 0.35) << colour << " at " << x << "," << y;
}

// The AI page's meters take the card's colour for Codex (teal), not the theme's blue; the Memory
// page names the CPU sensor by its chip and label, never by a file.
TEST_F(DashboardAccessibility, MetersTakeTheCardsColourAndTheSensorIsNamedByChipAndLabel) {
  environment["CODEX_HOME"] = KORVO_FIXTURES_DIR "/codex";
  environment["KORVO_SYSROOT"] = KORVO_FIXTURES_DIR "/hwmon/coretemp_two_packages";
  service = std::make_unique<Process>(
      std::vector<std::string>{KORVO_APP_BINARY, "open", "korvo://ai"}, environment,
      folder.path() / "service.out", folder.path() / "service.err");
  ASSERT_TRUE(waitFor([&] { return page() == "ai"; })) << readFile(folder.path() / "service.err");
  const auto read = [&](const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"/usr/bin/python3", KORVO_A11Y_READER, "--application",
                                     "com.tessmoor.Korvo"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto result = runCommand(command, reader);
    return result.exitStatus == 0 ? Json::parse(result.output, nullptr, false) : Json();
  };
  Json meter;
  ASSERT_TRUE(waitFor([&] {
    meter = read({"--named", "Remaining"});
    return meter.is_object() && meter["bounds"]["width"].get<int>() > 100;
  })) << readFile(folder.path() / "service.err");
  const fs::path picture = folder.path() / "meter.png";
  const int x = meter["bounds"]["x"].get<int>() + 6;
  const int y = meter["bounds"]["y"].get<int>() + meter["bounds"]["height"].get<int>() / 2;
  std::string colour;
  ASSERT_TRUE(waitFor([&] {
    screenshot(server->display(), picture);
    colour = pixel(picture, x, y);
    return colour.size() == 6;
  }));
  const int teal[] = {0x59, 0xAD, 0xC4};
  for (int channel = 0; channel < 3; ++channel) {
    EXPECT_NEAR(std::stoi(colour.substr(static_cast<std::size_t>(channel) * 2, 2), nullptr, 16),
                teal[channel], 24)
        << colour << " at " << x << "," << y;
  }

  ASSERT_FALSE(read({"--named", "Memory", "--act"}).is_null());
  ASSERT_TRUE(waitFor([&] { return page() == "memory"; }));
  Json labels;
  ASSERT_TRUE(waitFor([&] {
    labels = read({"--role", "label"});
    return labels.is_array() &&
           std::find(labels.begin(), labels.end(), "coretemp · Package id 1") != labels.end();
  })) << labels.dump();
  for (const auto& text : labels) {
    EXPECT_EQ(text.get<std::string>().find("/sys"), std::string::npos) << text;
  }
}

// The header bar's view switcher reads as the pages' titles in order and switches them; where
// Claude has no figures the AI page offers to connect it, and says what happens next; the menu
// opens the preferences and quits.
TEST_F(DashboardAccessibility,
       TheSwitcherReadsThePageTitlesClaudeConnectsAndTheMenuOpensPreferences) {
  service = std::make_unique<Process>(
      std::vector<std::string>{KORVO_APP_BINARY, "open", "korvo://ai"}, environment,
      folder.path() / "service.out", folder.path() / "service.err");
  ASSERT_TRUE(waitFor([&] { return page() == "ai"; })) << readFile(folder.path() / "service.err");
  const auto read = [&](const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"/usr/bin/python3", KORVO_A11Y_READER, "--application",
                                     "com.tessmoor.Korvo"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto result = runCommand(command, reader);
    return result.exitStatus == 0 ? Json::parse(result.output, nullptr, false) : Json();
  };
  Json switcher;
  ASSERT_TRUE(waitFor([&] {
    switcher = read({"--role", "radio button"});
    return switcher.is_array() && switcher.size() == 3;
  })) << switcher.dump();
  EXPECT_EQ(switcher, Json({"AI Usage", "Memory", "Keep Awake"}));
  ASSERT_FALSE(read({"--named", "Keep Awake", "--act"}).is_null());
  EXPECT_TRUE(waitFor([&] { return page() == "awake"; }));
  ASSERT_FALSE(read({"--named", "AI Usage", "--act"}).is_null());
  EXPECT_TRUE(waitFor([&] { return page() == "ai"; }));

  // The service's first publish says Claude's status line is not set up.
  Json connect;
  ASSERT_TRUE(waitFor([&] {
    connect = read({"--named", "Connect Claude Code"});
    return connect.is_object();
  })) << readFile(folder.path() / "service.err");
  EXPECT_EQ(connect["role"], "push button");
  const fs::path claudeSettings = folder.path() / "home/.claude/settings.json";
  EXPECT_FALSE(fs::exists(claudeSettings));
  // The page is built anew whenever korvo publishes: press the button the page shows now.
  ASSERT_TRUE(waitFor([&] {
    return read({"--named", "Connect Claude Code", "--act"}).is_object();
  }));
  EXPECT_TRUE(waitFor([&] {
    return read({"--named", "Connected: figures arrive with Claude Code's next reply"}).is_object();
  }));
  const auto settings = Json::parse(readFile(claudeSettings), nullptr, false);
  ASSERT_TRUE(settings.is_object()) << readFile(claudeSettings);
  EXPECT_EQ(settings["statusLine"]["command"],
            fs::path(KORVO_APP_BINARY).string() + " claude-statusline");
  EXPECT_EQ(read({"--named", "Disconnect"}).value("role", ""), "push button");
  // The service publishes at once, so the widgets no longer say the status line is not set up.
  const fs::path shared =
      folder.path() / "data/app-groups/group.com.tessmoor.Korvo/usage-snapshot.json";
  EXPECT_TRUE(waitFor([&] {
    const auto snapshot = Json::parse(readFile(shared), nullptr, false);
    return snapshot.is_object() && snapshot["claude"].is_object() &&
           snapshot["claude"].value("message", "") != "Claude status line not set up";
  })) << readFile(shared);

  // The header bar's menu: Preferences opens their window, Quit closes the dashboard's.
  ASSERT_FALSE(read({"--named", "Main menu", "--act"}).is_null());
  Json item;
  ASSERT_TRUE(waitFor([&] {
    item = read({"--named", "Preferences", "--act"});
    return item.is_object();
  }));
  EXPECT_TRUE(waitFor([&] {
    const auto state = Json::parse(readFile(folder.path() / "dashboard.json"), nullptr, false);
    return state.is_object() && state["preferences"] == "monitors";
  }));
  ASSERT_FALSE(read({"--named", "Main menu", "--act"}).is_null());
  ASSERT_TRUE(waitFor([&] { return read({"--named", "Quit", "--act"}).is_object(); }));
  EXPECT_TRUE(waitFor([&] { return page().empty(); }));
}

}  // namespace
}  // namespace korvo
