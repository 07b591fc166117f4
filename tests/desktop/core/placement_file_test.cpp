#include "desktop/core/placement_file.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "desktop/core/widget_lookup.hpp"
#include "extension/korvo_widgets.hpp"
#include "support/temporary_directory.hpp"

namespace korvo::desktop {
namespace {

namespace fs = std::filesystem;

struct PathCase {
  const char* name;
  const char* xdgConfigHome;
  const char* home;
  std::optional<fs::path> expected;
};

class PlacementsPath : public testing::TestWithParam<PathCase> {};

TEST_P(PlacementsPath, FollowsTheXdgRules) {
  EXPECT_EQ(placementsPath(GetParam().xdgConfigHome, GetParam().home), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, PlacementsPath,
                         testing::Values(PathCase{"XdgConfigHome", "/cfg", "/home/u",
                                                  "/cfg/korvo-widgets/placements.json"},
                                         PathCase{"HomeWhenUnset", nullptr, "/home/u",
                                                  "/home/u/.config/korvo-widgets/placements.json"},
                                         PathCase{"RelativeXdgIgnored", "cfg", "/home/u",
                                                  "/home/u/.config/korvo-widgets/placements.json"},
                                         PathCase{"NeitherAbsolute", "cfg", "home", std::nullopt},
                                         PathCase{"NeitherSet", nullptr, nullptr, std::nullopt}),
                         [](const auto& info) { return info.param.name; });

class PlacementsFile : public testing::Test {
 protected:
  fs::path write(const std::string& text) {
    const auto file = folder_ / "placements.json";
    std::ofstream(file) << text;
    return file;
  }

  std::variant<std::vector<Placement>, NoPlacementsFile, PlacementError> load(
      const fs::path& file) {
    return loadPlacementsFile(file, kindLookup(widgets_));
  }

  testing_support::TemporaryDirectory directory_;
  const fs::path& folder_ = directory_.path();
  std::vector<WidgetConfiguration> widgets_ = KorvoWidgets{}.body();
};

TEST_F(PlacementsFile, AMissingFileMeansTheDefaults) {
  EXPECT_TRUE(std::holds_alternative<NoPlacementsFile>(load(folder_ / "placements.json")));
}

TEST_F(PlacementsFile, AValidFileGivesItsPlacements) {
  const auto result = load(write(R"([{"kind": "awake"}, {"kind": "memory", "family": "medium"}])"));
  ASSERT_TRUE(std::holds_alternative<std::vector<Placement>>(result));
  const auto& placements = std::get<std::vector<Placement>>(result);
  ASSERT_EQ(placements.size(), 2U);
  EXPECT_EQ(placements[1].kind, "com.tessmoor.Korvo.memory");
  EXPECT_EQ(placements[1].family, ui::WidgetFamily::systemMedium);
}

TEST_F(PlacementsFile, AnErrorNamesTheFileAndTheKey) {
  const auto file = write(R"([{"kind": "memory", "anchor": "centre"}])");
  const auto result = load(file);
  ASSERT_TRUE(std::holds_alternative<PlacementError>(result));
  EXPECT_EQ(
      std::get<PlacementError>(result).message,
      file.string() + ": [0].anchor: expected top-left, top-right, bottom-left or bottom-right");
}

TEST_F(PlacementsFile, SavedPlacementsReadBackAsTheyWereInAFolderMadeForThem) {
  const std::vector<Placement> placements{
      {"com.tessmoor.Korvo.memory", ui::WidgetFamily::systemMedium, std::nullopt,
       ScreenAnchor::bottomLeft, 40, "DP-1"},
      {"com.tessmoor.Korvo.awake", ui::WidgetFamily::systemSmall, ui::Point{104, 56.5}},
  };
  const auto file = folder_ / "config" / "korvo-widgets" / "placements.json";
  ASSERT_EQ(savePlacementsFile(file, placements), std::nullopt);
  const auto result = load(file);
  ASSERT_TRUE(std::holds_alternative<std::vector<Placement>>(result));
  EXPECT_EQ(std::get<std::vector<Placement>>(result), placements);
  // Written as a person would: kind first, defaults left out.
  std::ifstream stream(file);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_EQ(text, R"([
  {
    "kind": "com.tessmoor.Korvo.memory",
    "family": "medium",
    "anchor": "bottom-left",
    "margin": 40.0,
    "output": "DP-1"
  },
  {
    "kind": "com.tessmoor.Korvo.awake",
    "family": "small",
    "position": {
      "x": 104.0,
      "y": 56.5
    }
  }
]
)");
}

TEST_F(PlacementsFile, AnEmptyFileIsNotJSON) {
  const auto file = write("");
  const auto result = load(file);
  ASSERT_TRUE(std::holds_alternative<PlacementError>(result));
  EXPECT_EQ(std::get<PlacementError>(result).message, file.string() + ": not valid JSON (byte 1)");
}

TEST_F(PlacementsFile, AFolderInItsPlaceIsRefused) {
  fs::create_directory(folder_ / "placements.json");
  const auto result = load(folder_ / "placements.json");
  ASSERT_TRUE(std::holds_alternative<PlacementError>(result));
  EXPECT_EQ(std::get<PlacementError>(result).message,
            (folder_ / "placements.json").string() + ": not a regular file");
}

}  // namespace
}  // namespace korvo::desktop
