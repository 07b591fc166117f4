#include <gtest/gtest.h>

#include <cstdlib>

#include "support/desktop_harness.hpp"
#include "support/host_environment.hpp"
#include "x_cursor.hpp"

// What tells a user that a card opens something: the hand cursor over it and a tooltip.
namespace korvo::desktop_test {
namespace {

void movePointer(const std::string& display, int x, int y) {
  runCommand({"xdotool", "mousemove", std::to_string(x), std::to_string(y)},
             {{"DISPLAY", display}, {"PATH", "/usr/bin:/bin"}});
}

TEST(CardCues, OverACardTheHandCursorAndATooltipShowAndLeavingTakesThemAway) {
  ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
  TemporaryDirectory folder;
  XServer server(1280, 1024, folder.path());
  const auto environment = hostEnvironment(
      folder.path(),
      {{"DISPLAY", server.display()}, {"GDK_BACKEND", "x11"}, {"NO_AT_BRIDGE", "1"}});
  Process host({KORVO_BINARY, "run", "--widget", "usage:medium"}, environment,
               folder.path() / "host.out", folder.path() / "host.err");
  std::vector<std::string> ids;
  ASSERT_TRUE(waitFor([&] {
    ids = visibleWindows(server.display(), "^AI Usage$");
    return ids.size() == 1;
  })) << readFile(folder.path() / "host.err");
  const auto card = windowGeometry(server.display(), ids.front());
  ASSERT_TRUE(card);

  movePointer(server.display(), 4, 4);
  ASSERT_EQ(cursorName(server.display()), "");
  // Two moves: the first enters the card, the second is a motion over it.
  movePointer(server.display(), card->x + 90, card->y + 100);
  movePointer(server.display(), card->x + 100, card->y + 110);
  EXPECT_TRUE(waitFor([&] { return cursorName(server.display()) == "pointer"; }))
      << cursorName(server.display());
  // GTK's tooltip: a window of the host's own that appears beside the pointer.
  std::vector<std::string> tooltips;
  EXPECT_TRUE(waitFor([&] {
    tooltips = visibleWindows(server.display(), "^korvo-widgets$");
    return tooltips.size() == 1;
  }));
  if (tooltips.size() == 1) {
    const auto tooltip = windowGeometry(server.display(), tooltips.front());
    ASSERT_TRUE(tooltip);
    EXPECT_LT(std::abs(tooltip->x - (card->x + 100)), 200);
    EXPECT_GT(tooltip->y, card->y + 110);
  }

  movePointer(server.display(), 4, 4);
  EXPECT_TRUE(waitFor([&] { return cursorName(server.display()).empty(); }));
  EXPECT_TRUE(waitFor([&] { return visibleWindows(server.display(), "^korvo-widgets$").empty(); }));
  EXPECT_TRUE(host.running());
}

}  // namespace
}  // namespace korvo::desktop_test
