#pragma once

#include <limits>

namespace korvo::ui {

// Unbounded length for `maxWidth` / `maxHeight` of a frame: take all the space offered.
inline constexpr double infinity = std::numeric_limits<double>::infinity();

struct Point {
  double x = 0;  // points, rightwards
  double y = 0;  // points, downwards
  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;   // points
  double height = 0;  // points
  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  double x = 0;       // points, left edge
  double y = 0;       // points, top edge
  double width = 0;   // points
  double height = 0;  // points

  constexpr double maxX() const { return x + width; }
  constexpr double maxY() const { return y + height; }
  constexpr bool contains(Point p) const {
    return p.x >= x && p.x < maxX() && p.y >= y && p.y < maxY();
  }
  friend bool operator==(const Rect&, const Rect&) = default;
};

struct EdgeInsets {
  double top = 0;       // points
  double leading = 0;   // points
  double bottom = 0;    // points
  double trailing = 0;  // points

  static constexpr EdgeInsets all(double length) { return {length, length, length, length}; }
  friend bool operator==(const EdgeInsets&, const EdgeInsets&) = default;
};

// A point in a node's own box, 0…1 on each axis (0,0 is top-leading).
struct UnitPoint {
  double x = 0;  // fraction of the width
  double y = 0;  // fraction of the height

  static constexpr UnitPoint topLeading() { return {0, 0}; }
  static constexpr UnitPoint top() { return {0.5, 0}; }
  static constexpr UnitPoint leading() { return {0, 0.5}; }
  static constexpr UnitPoint center() { return {0.5, 0.5}; }
  static constexpr UnitPoint trailing() { return {1, 0.5}; }
  static constexpr UnitPoint bottom() { return {0.5, 1}; }
  static constexpr UnitPoint bottomTrailing() { return {1, 1}; }
  friend bool operator==(const UnitPoint&, const UnitPoint&) = default;
};

enum class HorizontalAlignment { leading, center, trailing };

// `firstTextBaseline` lines children up on the baseline of the first line of text they hold.
enum class VerticalAlignment { top, center, bottom, firstTextBaseline };

struct Alignment {
  HorizontalAlignment horizontal = HorizontalAlignment::center;
  VerticalAlignment vertical = VerticalAlignment::center;

  static constexpr Alignment topLeading() {
    return {HorizontalAlignment::leading, VerticalAlignment::top};
  }
  static constexpr Alignment top() { return {HorizontalAlignment::center, VerticalAlignment::top}; }
  static constexpr Alignment leading() {
    return {HorizontalAlignment::leading, VerticalAlignment::center};
  }
  static constexpr Alignment center() { return {}; }
  static constexpr Alignment trailing() {
    return {HorizontalAlignment::trailing, VerticalAlignment::center};
  }
  static constexpr Alignment bottom() {
    return {HorizontalAlignment::center, VerticalAlignment::bottom};
  }
  static constexpr Alignment bottomTrailing() {
    return {HorizontalAlignment::trailing, VerticalAlignment::bottom};
  }
  friend bool operator==(const Alignment&, const Alignment&) = default;
};

}  // namespace korvo::ui
