#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "managed_desktop.hpp"
#include "support/host_environment.hpp"

// A card's menu, under a real window manager (openbox): every choice is saved to the placements
// file and shown at once.
namespace korvo::desktop_test {
namespace {

using Json = nlohmann::json;

class CardMenu : public ManagedDesktop {};

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
