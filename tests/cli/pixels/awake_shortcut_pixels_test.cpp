#include <gtest/gtest.h>

#include <string>

#include "render/pango_text_measurer.hpp"
#include "support/render/png_image.hpp"
#include "support/ui/view_tree_query.hpp"
#include "views/awake/awake_shortcut_view.hpp"

namespace korvo {
namespace {

TEST(AwakeShortcutPixelsTest, RendersTheCupInTealAtTwoTimes) {
  for (const auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
    const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall, {scheme});
    const ui::WidgetLayout widget =
        viewtest::layOut(AwakeShortcutView{}.body(env), env, render::PangoTextMeasurer::shared());
    const auto image = viewtest::PngImage::decode(viewtest::renderAndKeep(
        widget,
        std::string("awake-systemSmall-") + (scheme == ui::ColorScheme::light ? "light" : "dark")));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width(), 340);
    EXPECT_EQ(image->height(), 340);
    // Somewhere in the cup's box the glyph is drawn in solid teal.
    const ui::Rect cup = viewtest::nodesOfKind(widget.root, ui::NodeKind::symbol)[0]->frame;
    bool teal = false;
    for (int y = static_cast<int>(cup.y * 2); y < static_cast<int>(cup.maxY() * 2); ++y) {
      for (int x = static_cast<int>(cup.x * 2); x < static_cast<int>(cup.maxX() * 2); ++x) {
        if (viewtest::near(image->pixel(x, y), env.palette().teal)) teal = true;
      }
    }
    EXPECT_TRUE(teal);
  }
}

}  // namespace
}  // namespace korvo
