#include "sampling/display_mode.hpp"

#include "base/text.hpp"

namespace korvo {

std::string_view rawValue(DisplayMode mode) {
  return wordFor(displayModeWords, mode);
}

std::string label(DisplayMode mode) {
  switch (mode) {
    case DisplayMode::usedPercent:
      return _("Used percentage");
    case DisplayMode::usedGB:
      return _("Used GB");
    case DisplayMode::availablePercent:
      return _("Available percentage");
    case DisplayMode::availableGB:
      return _("Available GB");
    case DisplayMode::usedOfTotal:
      return _("Used / total GB");
  }
  return {};
}

std::optional<DisplayMode> displayModeFromRaw(std::string_view raw) {
  return valueNamed(displayModeWords, raw);
}

}  // namespace korvo
