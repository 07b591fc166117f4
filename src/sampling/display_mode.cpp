#include "sampling/display_mode.hpp"

#include "base/text.hpp"

namespace korvo {
namespace {

constexpr std::array<std::string_view, 5> rawValues{"usedPercent", "usedGB", "availablePercent",
                                                    "availableGB", "usedOfTotal"};

}  // namespace

std::string_view rawValue(DisplayMode mode) {
  return rawValues[static_cast<std::size_t>(mode)];
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
  for (const DisplayMode mode : allDisplayModes) {
    if (rawValue(mode) == raw) return mode;
  }
  return std::nullopt;
}

}  // namespace korvo
