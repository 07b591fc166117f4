#include <gtest/gtest.h>

#include "support/desktop_harness.hpp"
#include "support/host_environment.hpp"

// The host on a real X server puts its cards where the layout core says: at scale 2 on a Full HD
// screen the four default cards wrap into a second column instead of covering each other.
namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;

struct Card {
  std::string title;
  WindowGeometry expected;
};

bool overlap(const WindowGeometry& first, const WindowGeometry& second) {
  return first.x < second.x + second.width && second.x < first.x + first.width &&
         first.y < second.y + second.height && second.y < first.y + first.height;
}

TEST(ArrangedCards, AtScaleTwoOnFullHDTheDefaultCardsWrapIntoASecondColumnWithoutOverlapping) {
  ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
  TemporaryDirectory folder;
  constexpr int width = 1920;
  constexpr int height = 1080;
  XServer server(width, height, folder.path());
  const auto environment = hostEnvironment(
      folder.path(),
      {{"DISPLAY", server.display()}, {"GDK_BACKEND", "x11"}, {"NO_AT_BRIDGE", "1"}});
  // A light wallpaper, as the cards are seen on most desktops. ImageMagick's display leaves it
  // behind and says 1 whatever happened, so the screen itself tells whether it took.
  const auto picture = fs::path(KORVO_SCREENSHOT_DIR) / "arranged-scale-2.png";
  runCommand({"display", "-window", "root", "xc:#EEF0F2"}, environment);
  screenshot(server.display(), picture);
  ASSERT_EQ(pixel(picture, 4, 4), "EEF0F2");
  Process host({KORVO_BINARY, "run", "--scale", "2"}, environment, folder.path() / "host.out",
               folder.path() / "host.err");

  const std::vector<Card> cards{
      {"Memory", {1564, 16, 340, 340}},
      {"Keep Awake", {1564, 368, 340, 340}},
      {"AI Usage", {1176, 720, 728, 340}},
      {"CPU Temperature", {824, 16, 340, 340}},
  };
  std::vector<WindowGeometry> shown;
  for (const auto& card : cards) {
    // Named references, not a structured binding: clang 14 cannot capture those in a lambda.
    const std::string& title = card.title;
    const WindowGeometry& expected = card.expected;
    std::optional<WindowGeometry> window;
    waitFor([&] {
      const auto ids = visibleWindows(server.display(), "^" + title + "$");
      window = ids.size() == 1 ? windowGeometry(server.display(), ids.front()) : std::nullopt;
      return window && window->x == expected.x && window->y == expected.y;
    });
    ASSERT_TRUE(window) << title << " never appeared; host log:\n"
                        << readFile(folder.path() / "host.err");
    EXPECT_EQ(window->x, expected.x) << title;
    EXPECT_EQ(window->y, expected.y) << title;
    EXPECT_EQ(window->width, expected.width) << title;
    EXPECT_EQ(window->height, expected.height) << title;
    EXPECT_GE(window->x, 0) << title;
    EXPECT_GE(window->y, 0) << title;
    EXPECT_LE(window->x + window->width, width) << title;
    EXPECT_LE(window->y + window->height, height) << title;
    for (const auto& other : shown) EXPECT_FALSE(overlap(other, *window)) << title;
    shown.push_back(*window);
  }

  // Every card is painted in full: the middle of each and of its right half (where a covering
  // card would show) is not the wallpaper.
  const bool painted = waitFor([&] {
    screenshot(server.display(), picture);
    for (const auto& window : shown) {
      const int middleY = window.y + window.height / 2;
      for (const int x : {window.x + window.width / 2, window.x + window.width * 7 / 8}) {
        if (pixel(picture, x, middleY) == "EEF0F2") return false;
      }
    }
    return true;
  });
  EXPECT_TRUE(painted) << "a card shows the wallpaper; see " << picture;
  EXPECT_TRUE(host.running());
}

}  // namespace
}  // namespace korvo::desktop_test
