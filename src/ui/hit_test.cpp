#include "ui/hit_test.hpp"

namespace korvo::ui {

namespace {

void findLink(const LayoutNode& node, Point point, std::optional<std::string>& found) {
  if (!node.frame.contains(point)) return;
  if (node.url && !node.isWidgetURL) found = node.url;
  for (const LayoutNode& child : node.children) findLink(child, point, found);
}

void collectDates(const LayoutNode& node, std::vector<Date>& out) {
  if (node.relativeTo) out.push_back(*node.relativeTo);
  for (const LayoutNode& child : node.children) collectDates(child, out);
}

}  // namespace

std::optional<std::string> urlAt(const WidgetLayout& widget, Point point) {
  if (!widget.root.frame.contains(point)) return std::nullopt;
  std::optional<std::string> link;
  findLink(widget.root, point, link);
  if (link) return link;
  if (widget.url.empty()) return std::nullopt;
  return widget.url;
}

std::vector<Date> liveRelativeDates(const WidgetLayout& widget) {
  std::vector<Date> out;
  collectDates(widget.root, out);
  return out;
}

}  // namespace korvo::ui
