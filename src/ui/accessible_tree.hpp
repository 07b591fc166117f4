#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ui/geometry.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::ui {

// What an element is to a screen reader.
enum class AccessibleRole { label, meter, link };

// One thing of a laid-out widget that a screen reader reads out, as any toolkit exposes it.
struct AccessibleElement {
  AccessibleRole role = AccessibleRole::label;
  std::string name{};   // the node's accessibility label, else the text it draws
  std::string value{};  // the node's accessibility value ("42 percent"), empty when none
  std::optional<double> level = std::nullopt;  // meters: the filled share as drawn, 0…1
  Rect frame{};                                // points, widget coordinates
  std::string url{};                           // links: the destination
  friend bool operator==(const AccessibleElement&, const AccessibleElement&) = default;
};

// The widget's elements in drawing order. A node carrying an accessibility label or value, a
// meter, a link or a node that draws a text is one element, and everything inside it belongs to
// it (a link is named by the texts it holds). Backdrops, shapes, dividers, spacers and symbols
// without text are no elements.
std::vector<AccessibleElement> accessibleElements(const WidgetLayout& widget);

// One step from an old element list towards a new one.
struct AccessibleEdit {
  enum class Kind {
    remove,  // drop the element at `index`
    insert,  // insert the new list's element `index` at `index`
    update,  // the element at `index` becomes the new list's element `index` (same role)
  };
  Kind kind = Kind::update;
  std::size_t index = 0;
  friend bool operator==(const AccessibleEdit&, const AccessibleEdit&) = default;
};

// The edits that turn `from` into `to`, to be applied in order: removals from the back, then
// insertions from the front, then updates. Equal elements stay untouched, and an element whose
// text moved on ("4 min" to "5 min") is updated in place rather than replaced, so a screen
// reader hears one name change instead of a vanished and a new element.
std::vector<AccessibleEdit> accessibleEdits(const std::vector<AccessibleElement>& from,
                                            const std::vector<AccessibleElement>& to);

}  // namespace korvo::ui
