#include "desktop/core/widget_lookup.hpp"

#include "base/text.hpp"
#include "extension/korvo_widgets.hpp"

namespace korvo::desktop {

const std::vector<WidgetConfiguration>& widgets() {
  static const std::vector<WidgetConfiguration> bundle = KorvoWidgets{}.body();
  return bundle;
}

std::string validKinds() {
  return "valid kinds: " + joined(widgets(), ", ", &WidgetConfiguration::shortKind) +
         " (or the full kind, e.g. " + widgets().front().kind + ")";
}

KindLookup kindLookup(const std::vector<WidgetConfiguration>& widgets) {
  return [&widgets](std::string_view kind) -> std::optional<KindFamilies> {
    const auto* widget = findWidget(widgets, kind);
    if (widget == nullptr) return std::nullopt;
    return KindFamilies{widget->kind, widget->supportedFamilies};
  };
}

}  // namespace korvo::desktop
