#include "desktop/core/widget_lookup.hpp"

#include "extension/korvo_widgets.hpp"

namespace korvo::desktop {

KindLookup kindLookup(const std::vector<WidgetConfiguration>& widgets) {
  return [&widgets](std::string_view kind) -> std::optional<KindFamilies> {
    const auto* widget = findWidget(widgets, kind);
    if (widget == nullptr) return std::nullopt;
    return KindFamilies{widget->kind, widget->supportedFamilies};
  };
}

}  // namespace korvo::desktop
