#include "ui/tree_json.hpp"

#include <cmath>

#include "ui/words.hpp"

namespace korvo::ui {

nlohmann::ordered_json nodeJSON(const LayoutNode& node) {
  nlohmann::ordered_json json;
  json["kind"] = nodeKindName(node.kind);
  json["frame"] = {{"x", node.frame.x},
                   {"y", node.frame.y},
                   {"width", node.frame.width},
                   {"height", node.frame.height}};
  if (node.text) json["text"] = *node.text;
  if (node.symbol) json["symbol"] = *node.symbol;
  if (node.font) {
    json["font"] = {{"size", node.font->size},
                    {"weight", weightName(node.font->weight)},
                    {"design", designName(node.font->design)},
                    {"monospacedDigits", node.font->monospacedDigits}};
  }
  if (node.color) json["color"] = node.color->hex();
  if (node.opacity != 1) json["opacity"] = node.opacity;
  if (node.url) json["url"] = *node.url;
  if (node.accentable) json["accentable"] = true;
  if (node.accessibilityLabel) json["accessibilityLabel"] = *node.accessibilityLabel;
  if (node.accessibilityValue) json["accessibilityValue"] = *node.accessibilityValue;
  if (node.fraction) {
    // JSON has no NaN or infinity; those fractions are written as strings.
    if (std::isfinite(*node.fraction)) {
      json["fraction"] = *node.fraction;
    } else {
      json["fraction"] = std::isnan(*node.fraction) ? "nan" : (*node.fraction > 0 ? "inf" : "-inf");
    }
  }
  if (!node.children.empty()) {
    auto& children = json["children"] = nlohmann::ordered_json::array();
    for (const LayoutNode& child : node.children) children.push_back(nodeJSON(child));
  }
  return json;
}

nlohmann::ordered_json widgetJSON(const WidgetLayout& widget) {
  nlohmann::ordered_json json;
  json["widget"] = widget.kind;
  json["family"] = familyName(widget.family);
  json["width"] = widget.size.width;
  json["height"] = widget.size.height;
  json["url"] = widget.url;
  json["tree"] = nodeJSON(widget.root);
  return json;
}

std::string widgetJSONText(const WidgetLayout& widget) {
  return widgetJSON(widget).dump(2) + "\n";
}

}  // namespace korvo::ui
