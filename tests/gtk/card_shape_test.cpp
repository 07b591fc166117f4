#include "gtk/card_shape.hpp"

#include <gtest/gtest.h>

#include <numbers>

namespace korvo::gtk {
namespace {

struct Region {
  explicit Region(cairo_region_t* region) : region(region) {}
  ~Region() { cairo_region_destroy(region); }
  Region(const Region&) = delete;
  Region& operator=(const Region&) = delete;
  bool contains(int x, int y) const { return cairo_region_contains_point(region, x, y) != 0; }
  long area() const {
    long pixels = 0;
    for (int index = 0; index < cairo_region_num_rectangles(region); ++index) {
      cairo_rectangle_int_t rectangle;
      cairo_region_get_rectangle(region, index, &rectangle);
      pixels += static_cast<long>(rectangle.width) * rectangle.height;
    }
    return pixels;
  }
  cairo_region_t* region;
};

TEST(CardRegion, CutsTheFourCornersAndKeepsTheEdgesBetweenThem) {
  const Region card(cardRegion({364, 170}, 20));
  for (const auto& [x, y] : {std::pair{0, 0}, {363, 0}, {0, 169}, {363, 169}, {3, 3}}) {
    EXPECT_FALSE(card.contains(x, y)) << x << "," << y;
  }
  for (const auto& [x, y] : {std::pair{20, 0}, {182, 85}, {0, 85}, {363, 85}, {343, 169}}) {
    EXPECT_TRUE(card.contains(x, y)) << x << "," << y;
  }
}

TEST(CardRegion, AreaIsTheRoundedRectangleToWithinARowPerCorner) {
  const double radius = 40;
  const Region card(cardRegion({340, 340}, radius));
  const double expected = 340.0 * 340.0 - (4 - std::numbers::pi) * radius * radius;
  EXPECT_NEAR(static_cast<double>(card.area()), expected, 4 * radius);
}

TEST(CardRegion, ARadiusBeyondHalfTheHeightMakesACapsule) {
  const Region card(cardRegion({100, 20}, 50));
  EXPECT_FALSE(card.contains(0, 0));
  EXPECT_TRUE(card.contains(50, 0));
  EXPECT_TRUE(card.contains(0, 10));
}

}  // namespace
}  // namespace korvo::gtk
