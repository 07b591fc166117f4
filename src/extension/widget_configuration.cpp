#include "extension/widget_configuration.hpp"

#include <algorithm>

namespace korvo {

bool WidgetConfiguration::supports(ui::WidgetFamily family) const {
  return std::find(supportedFamilies.begin(), supportedFamilies.end(), family) !=
         supportedFamilies.end();
}

std::string WidgetConfiguration::shortKind() const {
  const auto dot = kind.rfind('.');
  return dot == std::string::npos ? kind : kind.substr(dot + 1);
}

}  // namespace korvo
