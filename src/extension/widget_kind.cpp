#include "extension/widget_kind.hpp"

#include "shared/app_identity.hpp"

namespace korvo {

std::string_view kindWord(WidgetKind kind) {
  return wordFor(widgetKindWords, kind);
}

std::string fullKind(WidgetKind kind) {
  return std::string(AppIdentity::applicationIdentifier) + "." + std::string(kindWord(kind));
}

}  // namespace korvo
