#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "render/image_output.hpp"
#include "render/pango_text_measurer.hpp"
#include "support/render/png_image.hpp"
#include "support/views/common/sample_card.hpp"
#include "ui/widget_layout.hpp"
#include "ui/words.hpp"

namespace korvo {
namespace {

// Renders the sample card in both families and schemes into the build tree's samples folder,
// where they can be looked at; each must be a whole card with its figure drawn.
TEST(SampleCards, RenderInBothFamiliesAndSchemes) {
  std::filesystem::create_directories(KORVO_SAMPLE_DIR);
  for (auto family : {ui::WidgetFamily::systemSmall, ui::WidgetFamily::systemMedium}) {
    for (auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
      const ui::Environment environment{
          .family = family, .colorScheme = scheme, .now = Date::fromUnixSeconds(1'800'000'000)};
      const ui::WidgetLayout widget =
          ui::layoutWidget("sample", testing_support::sampleCard(environment), environment,
                           render::PangoTextMeasurer::shared());
      const std::string png = render::renderPNG(widget, {.scale = 2});
      const auto pixels = viewtest::PngImage::decode(png);
      ASSERT_TRUE(pixels);
      EXPECT_EQ(pixels->width(), static_cast<int>(ui::familySize(family).width * 2));
      const std::string name = std::string(ui::familyName(family)) +
                               (scheme == ui::ColorScheme::dark ? "-dark.png" : "-light.png");
      std::ofstream(std::filesystem::path(KORVO_SAMPLE_DIR) / name, std::ios::binary) << png;
    }
  }
}

}  // namespace
}  // namespace korvo
