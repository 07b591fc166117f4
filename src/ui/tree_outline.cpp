#include "ui/tree_outline.hpp"

#include "base/c_format.hpp"
#include "ui/words.hpp"

namespace korvo::ui {

namespace {

void appendNode(std::string& out, const LayoutNode& node, int depth) {
  out.append(static_cast<std::size_t>(depth) * 2, ' ');
  out += nodeKindName(node.kind);
  out += cFormat(" (%g,%g %gx%g)", node.frame.x, node.frame.y, node.frame.width, node.frame.height);
  if (node.symbol) out.append(" [").append(*node.symbol).append("]");
  if (node.text) out.append(" \"").append(*node.text).append("\"");
  if (node.font) {
    out += cFormat(" %g %s", node.font->size, std::string(weightName(node.font->weight)).c_str());
    if (node.font->design != FontDesign::standard)
      out.append(" ").append(designName(node.font->design));
    if (node.font->monospacedDigits) out += " tnum";
  }
  if (node.color) out.append(" ").append(node.color->hex());
  if (node.opacity != 1) out += cFormat(" opacity %g", node.opacity);
  if (node.fraction) out += cFormat(" fraction %g", *node.fraction);
  if (node.url) out.append(" -> ").append(*node.url);
  if (node.accentable) out += " accentable";
  if (node.accessibilityLabel)
    out.append(" label=\"").append(*node.accessibilityLabel).append("\"");
  if (node.accessibilityValue)
    out.append(" value=\"").append(*node.accessibilityValue).append("\"");
  out += '\n';
  for (const LayoutNode& child : node.children) appendNode(out, child, depth + 1);
}

}  // namespace

std::string treeOutline(const LayoutNode& node) {
  std::string out;
  appendNode(out, node, 0);
  return out;
}

std::string treeOutline(const WidgetLayout& widget) {
  std::string out = widget.kind;
  out.append(" ").append(familyName(widget.family));
  if (!widget.url.empty()) out.append(" -> ").append(widget.url);
  out += '\n';
  appendNode(out, widget.root, 1);
  return out;
}

}  // namespace korvo::ui
