#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "managed_desktop.hpp"
#include "support/host_environment.hpp"

// Dragging a card under a real window manager (openbox), with xdotool's press, moves and release:
// the window manager moves it, and on release it settles on the 8-pixel grid or beside a nearby
// card, saved as a position.
namespace korvo::desktop_test {
namespace {

using Json = nlohmann::json;

class CardDrag : public ManagedDesktop {
 protected:
  // Presses on (x, y), moves past the drag threshold, then moves by (dx, dy) more and releases.
  void drag(int x, int y, int dx, int dy) {
    const auto xdotool = [&](std::vector<std::string> words) {
      words.insert(words.begin(), "xdotool");
      runCommand(words, environment_);
    };
    xdotool({"mousemove", "--sync", std::to_string(x), std::to_string(y), "mousedown", "1"});
    // The move starts where the pointer leaves the threshold, so the card then follows by
    // exactly (dx, dy).
    xdotool({"mousemove", "--sync", std::to_string(x + thresholdStep), std::to_string(y)});
    xdotool(
        {"mousemove", "--sync", std::to_string(x + thresholdStep + dx), std::to_string(y + dy)});
    xdotool({"mouseup", "1"});
  }

  Json positionOf(std::size_t index) const {
    const auto document = placements();
    return document.is_array() && document.size() > index
               ? document[index].value("position", Json())
               : Json();
  }

  static constexpr int thresholdStep = 12;  // past GTK's drag threshold of 8 pixels
};

TEST_F(CardDrag, ACardDroppedBesideAnotherLinesUpWithItAndOneDroppedInTheOpenTakesTheGrid) {
  startHost(R"([{"kind": "memory"}, {"kind": "awake", "anchor": "top-left"}])");
  const auto memory = window("Memory");
  ASSERT_TRUE(memory) << readFile(hostLog());
  ASSERT_EQ(memory->x, screenWidth - 16 - 170);
  ASSERT_TRUE(window("Keep Awake", [](const auto& card) { return card.x == 16; }));

  // Let go 2 pixels right of Keep Awake's side at the cards' gap and 4 below its top.
  drag(memory->x + 50, memory->y + 50, 200 - memory->x, 4);
  const Json beside{{"x", 16 + 170 + 12}, {"y", 16}};
  EXPECT_TRUE(waitFor([&] { return positionOf(0) == beside; })) << readFile(placementsFile());
  const auto settled =
      window("Memory", [](const auto& card) { return card.x == 16 + 170 + 12 && card.y == 16; });
  ASSERT_TRUE(settled) << readFile(hostLog());
  EXPECT_EQ(settled->x, 198);
  EXPECT_EQ(settled->y, 16);

  // In the open: the nearest point of the 8-pixel grid.
  drag(settled->x + 50, settled->y + 50, 303, 301);
  const Json onTheGrid{{"x", 504}, {"y", 320}};
  EXPECT_TRUE(waitFor([&] { return positionOf(0) == onTheGrid; })) << readFile(placementsFile());
  EXPECT_TRUE(window("Memory", [](const auto& card) { return card.x == 504 && card.y == 320; }))
      << readFile(hostLog());
  // The other card stays where it was, at its corner.
  EXPECT_EQ(placements()[1]["anchor"], "top-left");
  EXPECT_TRUE(host_->running());
}

TEST_F(CardDrag, AClickWithoutADragStillOpensTheLinkAndMovesNothing) {
  registerUrlRecorder(folder_.path());
  startHost(R"([{"kind": "awake"}])");
  const auto awake = window("Keep Awake");
  ASSERT_TRUE(awake) << readFile(hostLog());
  // A press and release a few pixels apart, within the drag threshold, is a click.
  runCommand({"xdotool", "mousemove", "--sync", std::to_string(awake->x + 80),
              std::to_string(awake->y + 80), "mousedown", "1", "mousemove", "--sync",
              std::to_string(awake->x + 83), std::to_string(awake->y + 82), "mouseup", "1"},
             environment_);
  EXPECT_TRUE(waitFor([&] { return readFile(urlLog()) == "korvo://awake\n"; }))
      << readFile(urlLog()) << readFile(hostLog());
  EXPECT_EQ(readFile(placementsFile()), R"([{"kind": "awake"}])");
  const auto after = window("Keep Awake");
  ASSERT_TRUE(after);
  EXPECT_EQ(after->x, awake->x);
  EXPECT_EQ(after->y, awake->y);
}

}  // namespace
}  // namespace korvo::desktop_test
