#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "support/desktop_harness.hpp"

// The desktop host on an X server with a real window manager (openbox), its placements in a file
// of the test's own: for the tests of what a user does to the cards with the mouse.
namespace korvo::desktop_test {

class ManagedDesktop : public testing::Test {
 protected:
  static constexpr int screenWidth = 1280;
  static constexpr int screenHeight = 1024;

  void SetUp() override;

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

  std::filesystem::path placementsFile() const {
    return folder_.path() / "config" / "korvo-widgets" / "placements.json";
  }
  std::filesystem::path hostLog() const { return folder_.path() / "host.err"; }
  std::filesystem::path urlLog() const { return folder_.path() / "urls.txt"; }

  nlohmann::json placements() const {
    try {
      return nlohmann::json::parse(readFile(placementsFile()));
    } catch (const nlohmann::json::exception&) {
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

}  // namespace korvo::desktop_test
