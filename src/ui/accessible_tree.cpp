#include "ui/accessible_tree.hpp"

#include <algorithm>
#include <utility>

#include "ui/meter_fill.hpp"

namespace korvo::ui {

namespace {

bool isLink(const LayoutNode& node) {
  return node.kind == NodeKind::link && node.url && !node.isWidgetURL;
}

bool isElement(const LayoutNode& node) {
  return node.accessibilityLabel || node.accessibilityValue || node.kind == NodeKind::meter ||
         isLink(node) || (node.text && !node.text->empty());
}

// The texts a node and its subtree draw, in drawing order, one space apart.
void appendTexts(const LayoutNode& node, std::string& out) {
  if (node.text && !node.text->empty()) {
    if (!out.empty()) out += ' ';
    out += *node.text;
  }
  for (const LayoutNode& child : node.children) appendTexts(child, out);
}

AccessibleElement elementOf(const LayoutNode& node) {
  AccessibleElement element;
  if (node.kind == NodeKind::meter) {
    element.role = AccessibleRole::meter;
    if (node.fraction) element.level = meterFillFactor(*node.fraction);
  } else if (isLink(node)) {
    element.role = AccessibleRole::link;
    element.url = *node.url;
  }
  if (node.accessibilityLabel) {
    element.name = *node.accessibilityLabel;
  } else {
    appendTexts(node, element.name);
  }
  element.value = node.accessibilityValue.value_or("");
  element.frame = node.frame;
  return element;
}

void collect(const LayoutNode& node, std::vector<AccessibleElement>& out) {
  if (!isElement(node)) {
    for (const LayoutNode& child : node.children) collect(child, out);
    return;
  }
  AccessibleElement element = elementOf(node);
  // An empty accessibility label on a plain node hides it and what it holds.
  if (element.role == AccessibleRole::label && element.name.empty() && element.value.empty()) {
    return;
  }
  out.push_back(std::move(element));
}

using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;

// The longest order-keeping pairing of from[fromBegin, fromEnd) with to[toBegin, toEnd) under
// `same`, as (from index, to index) pairs in order.
template <typename Same>
Pairs longestPairing(std::size_t fromBegin, std::size_t fromEnd, std::size_t toBegin,
                     std::size_t toEnd, Same same) {
  const std::size_t rows = fromEnd - fromBegin;
  const std::size_t columns = toEnd - toBegin;
  // lengths[i][j]: the longest pairing of the suffixes from i and from j.
  std::vector<std::size_t> lengths((rows + 1) * (columns + 1), 0);
  const auto at = [&](std::size_t i, std::size_t j) -> std::size_t& {
    return lengths[i * (columns + 1) + j];
  };
  for (std::size_t i = rows; i-- > 0;) {
    for (std::size_t j = columns; j-- > 0;) {
      at(i, j) = same(fromBegin + i, toBegin + j) ? at(i + 1, j + 1) + 1
                                                  : std::max(at(i + 1, j), at(i, j + 1));
    }
  }
  Pairs pairs;
  for (std::size_t i = 0, j = 0; i < rows && j < columns;) {
    if (same(fromBegin + i, toBegin + j)) {
      pairs.emplace_back(fromBegin + i, toBegin + j);
      ++i;
      ++j;
    } else if (at(i + 1, j) >= at(i, j + 1)) {
      ++i;
    } else {
      ++j;
    }
  }
  return pairs;
}

}  // namespace

std::vector<AccessibleElement> accessibleElements(const WidgetLayout& widget) {
  std::vector<AccessibleElement> out;
  collect(widget.root, out);
  return out;
}

std::vector<AccessibleEdit> accessibleEdits(const std::vector<AccessibleElement>& from,
                                            const std::vector<AccessibleElement>& to) {
  // Elements that did not change anchor the lists; between two anchors, elements of the same
  // role are paired in order and updated, the rest removed or inserted.
  const Pairs unchanged = longestPairing(0, from.size(), 0, to.size(),
                                         [&](auto i, auto j) { return from[i] == to[j]; });
  std::vector<bool> fromKept(from.size(), false);
  std::vector<bool> toKept(to.size(), false);
  std::vector<std::size_t> updates;
  std::size_t fromGap = 0;
  std::size_t toGap = 0;
  for (std::size_t anchor = 0; anchor <= unchanged.size(); ++anchor) {
    const auto [fromEnd, toEnd] =
        anchor < unchanged.size() ? unchanged[anchor] : std::pair{from.size(), to.size()};
    const Pairs sameRole = longestPairing(
        fromGap, fromEnd, toGap, toEnd, [&](auto i, auto j) { return from[i].role == to[j].role; });
    for (const auto& [i, j] : sameRole) {
      fromKept[i] = toKept[j] = true;
      updates.push_back(j);
    }
    if (anchor < unchanged.size()) fromKept[fromEnd] = toKept[toEnd] = true;
    fromGap = fromEnd + 1;
    toGap = toEnd + 1;
  }
  std::vector<AccessibleEdit> edits;
  for (std::size_t i = from.size(); i-- > 0;) {
    if (!fromKept[i]) edits.push_back({AccessibleEdit::Kind::remove, i});
  }
  for (std::size_t j = 0; j < to.size(); ++j) {
    if (!toKept[j]) edits.push_back({AccessibleEdit::Kind::insert, j});
  }
  std::sort(updates.begin(), updates.end());
  for (std::size_t j : updates) edits.push_back({AccessibleEdit::Kind::update, j});
  return edits;
}

}  // namespace korvo::ui
