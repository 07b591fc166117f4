#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "support/desktop_harness.hpp"
#include "support/host_environment.hpp"

// A card's menu, under a real window manager (openbox): every choice is saved to the placements
// file and shown at once.
namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr int screenWidth = 1280;
constexpr int screenHeight = 1024;

class CardMenu : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
    server_ = std::make_unique<XServer>(screenWidth, screenHeight, folder_.path());
    environment_ = hostEnvironment(folder_.path(), {
                                                       {"DISPLAY", server_->display()},
                                                       {"GDK_BACKEND", "x11"},
                                                       {"NO_AT_BRIDGE", "1"},
                                                       {"KORVO_TEST_URL_LOG", urlLog().string()},
                                                   });
    windowManager_ =
        std::make_unique<Process>(std::vector<std::string>{"openbox"}, environment_,
                                  folder_.path() / "openbox.out", folder_.path() / "openbox.err");
    // Openbox manages the screen once it names itself on the root window.
    ASSERT_TRUE(waitFor([&] {
      return runCommand({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"}, environment_)
                 .output.find("window id") != std::string::npos;
    })) << readFile(folder_.path() / "openbox.err");
  }

  void TearDown() override {
    host_.reset();
    windowManager_.reset();
    server_.reset();
  }

  void startHost(const std::string& placements) {
    writeFile(placementsFile(), placements);
    host_ = std::make_unique<Process>(std::vector<std::string>{KORVO_BINARY, "run"}, environment_,
                                      folder_.path() / "host.out", hostLog());
  }

  fs::path placementsFile() const {
    return folder_.path() / "config" / "korvo-widgets" / "placements.json";
  }
  fs::path hostLog() const { return folder_.path() / "host.err"; }
  fs::path urlLog() const { return folder_.path() / "urls.txt"; }

  Json placements() const {
    try {
      return Json::parse(readFile(placementsFile()));
    } catch (const Json::exception&) {
      return nullptr;
    }
  }

  // The one mapped window titled `title` once `ready` holds for it, or the last one seen.
  std::optional<WindowGeometry> window(
      const std::string& title,
      const std::function<bool(const WindowGeometry&)>& ready = [](const auto&) { return true; }) {
    std::optional<WindowGeometry> found;
    waitFor([&] {
      const auto ids = visibleWindows(server_->display(), "^" + title + "$");
      found = ids.size() == 1 ? windowGeometry(server_->display(), ids.front()) : std::nullopt;
      return found && ready(*found);
    });
    return found;
  }

  // The host's menus shown on screen: its windows named after the program, on screen (GTK keeps
  // one mapped off screen) and taller than a tooltip, which shares the name.
  std::size_t popups() const {
    std::size_t shown = 0;
    for (const auto& id : visibleWindows(server_->display(), "^korvo-widgets$")) {
      const auto geometry = windowGeometry(server_->display(), id);
      if (geometry && geometry->x >= 0 && geometry->y >= 0 && geometry->height > 60) ++shown;
    }
    return shown;
  }

  // Right-clicks the card titled `title` and types `keys` into its menu once it shows.
  void choose(const std::string& title, const std::vector<std::string>& keys) {
    const auto card = window(title);
    ASSERT_TRUE(card) << title << " is not shown; host log:\n" << readFile(hostLog());
    rightClick(server_->display(), card->x + card->width / 2, card->y + card->height / 2);
    ASSERT_TRUE(waitFor([&] { return popups() == 1; })) << "no menu over " << title;
    for (const auto& key : keys) pressKey(server_->display(), key);
    ASSERT_TRUE(waitFor([&] { return popups() == 0; })) << "the menu stayed open";
  }

  TemporaryDirectory folder_;
  std::unique_ptr<XServer> server_;
  Environment environment_;
  std::unique_ptr<Process> windowManager_;
  std::unique_ptr<Process> host_;
};

TEST_F(CardMenu, EachChoiceIsSavedToThePlacementsFileAndShownAtOnce) {
  startHost(R"([{"kind": "memory"}])");
  ASSERT_TRUE(window("Memory")) << readFile(hostLog());

  // Medium.
  ASSERT_NO_FATAL_FAILURE(choose("Memory", {"m"}));
  EXPECT_TRUE(waitFor([&] { return placements()[0]["family"] == "medium"; }))
      << readFile(placementsFile());
  const auto medium = window("Memory", [](const auto& card) { return card.width == 364; });
  ASSERT_TRUE(medium);
  EXPECT_EQ(medium->width, 364);
  EXPECT_EQ(medium->x + medium->width, screenWidth - 16);

  // Move to ▸ Bottom left.
  ASSERT_NO_FATAL_FAILURE(choose("Memory", {"t", "b"}));
  EXPECT_TRUE(waitFor([&] { return placements()[0]["anchor"] == "bottom-left"; }))
      << readFile(placementsFile());
  const auto moved = window("Memory", [](const auto& card) { return card.x == 16; });
  ASSERT_TRUE(moved);
  EXPECT_EQ(moved->x, 16);
  EXPECT_EQ(moved->y + moved->height, screenHeight - 16);

  // Add widget ▸ the first not shown: Keep Awake, in the same corner, above Memory.
  ASSERT_NO_FATAL_FAILURE(choose("Memory", {"a", "Return"}));
  EXPECT_TRUE(waitFor([&] { return placements().size() == 2; })) << readFile(placementsFile());
  EXPECT_EQ(
      placements()[1],
      (Json{{"kind", "com.tessmoor.Korvo.awake"}, {"family", "small"}, {"anchor", "bottom-left"}}));
  const auto awake = window("Keep Awake");
  ASSERT_TRUE(awake) << readFile(hostLog());
  EXPECT_EQ(awake->x, 16);
  EXPECT_EQ(awake->y + awake->height, moved->y - 12);

  // Remove.
  ASSERT_NO_FATAL_FAILURE(choose("Keep Awake", {"r"}));
  EXPECT_TRUE(waitFor([&] { return placements().size() == 1; })) << readFile(placementsFile());
  EXPECT_TRUE(waitFor([&] { return visibleWindows(server_->display(), "^Keep Awake$").empty(); }));
  EXPECT_EQ(placements()[0]["kind"], "com.tessmoor.Korvo.memory");
  EXPECT_TRUE(host_->running());
}

TEST_F(CardMenu, OpenDashboardOpensTheCardsTabInKorvo) {
  registerUrlRecorder(folder_.path());
  startHost(R"([{"kind": "usage", "family": "medium"}])");
  ASSERT_NO_FATAL_FAILURE(choose("AI Usage", {"d"}));
  EXPECT_TRUE(waitFor([&] { return readFile(urlLog()) == "korvo://usage\n"; }))
      << readFile(urlLog()) << readFile(hostLog());
  // Nothing in the file changed.
  EXPECT_EQ(placements().size(), 1U);
}

TEST_F(CardMenu, TheMenuKeyOpensTheMenuOfTheCardWithTheFocus) {
  startHost(R"([{"kind": "awake"}])");
  const auto ids = [&] { return visibleWindows(server_->display(), "^Keep Awake$"); };
  ASSERT_TRUE(waitFor([&] { return ids().size() == 1; })) << readFile(hostLog());
  runCommand({"xdotool", "windowfocus", "--sync", ids().front()}, environment_);
  pressKey(server_->display(), "Menu");
  ASSERT_TRUE(waitFor([&] { return popups() == 1; })) << readFile(hostLog());
  pressKey(server_->display(), "Escape");
  EXPECT_TRUE(waitFor([&] { return popups() == 0; }));
  EXPECT_EQ(readFile(placementsFile()), R"([{"kind": "awake"}])");
}

}  // namespace
}  // namespace korvo::desktop_test
