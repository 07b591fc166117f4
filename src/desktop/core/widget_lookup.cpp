#include "desktop/core/widget_lookup.hpp"

#include "extension/korvo_widgets.hpp"

namespace korvo::desktop {

const std::vector<WidgetConfiguration>& widgets() {
  static const std::vector<WidgetConfiguration> bundle = KorvoWidgets{}.body();
  return bundle;
}

std::string validKinds() {
  std::string valid;
  for (const WidgetConfiguration& widget : widgets()) {
    valid += (valid.empty() ? "" : ", ") + widget.shortKind();
  }
  return "valid kinds: " + valid + " (or the full kind, e.g. " + widgets().front().kind + ")";
}

KindLookup kindLookup(const std::vector<WidgetConfiguration>& widgets) {
  return [&widgets](std::string_view kind) -> std::optional<KindFamilies> {
    const auto* widget = findWidget(widgets, kind);
    if (widget == nullptr) return std::nullopt;
    return KindFamilies{widget->kind, widget->supportedFamilies};
  };
}

}  // namespace korvo::desktop
