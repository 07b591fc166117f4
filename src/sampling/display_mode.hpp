#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// The five ways one memory figure can be shown as a short text.
enum class DisplayMode { usedPercent, usedGB, availablePercent, availableGB, usedOfTotal };

// Every mode in the order a picker lists them.
inline constexpr std::array<DisplayMode, 5> allDisplayModes{
    DisplayMode::usedPercent, DisplayMode::usedGB, DisplayMode::availablePercent,
    DisplayMode::availableGB, DisplayMode::usedOfTotal};

// "usedPercent", "usedGB", …: the serialised form.
std::string_view rawValue(DisplayMode mode);

// The localised name of the mode ("Used percentage", …).
std::string label(DisplayMode mode);

// Exact, case-sensitive match of the five raw values; anything else is no value.
std::optional<DisplayMode> displayModeFromRaw(std::string_view raw);

}  // namespace korvo
