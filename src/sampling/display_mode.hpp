#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/words.hpp"

namespace korvo {

// The five ways one memory figure can be shown as a short text.
enum class DisplayMode { usedPercent, usedGB, availablePercent, availableGB, usedOfTotal };

// "usedPercent", "usedGB", …: the serialised form, in the order a picker lists the modes.
inline constexpr Words<DisplayMode, 5> displayModeWords{{
    {"usedPercent", DisplayMode::usedPercent},
    {"usedGB", DisplayMode::usedGB},
    {"availablePercent", DisplayMode::availablePercent},
    {"availableGB", DisplayMode::availableGB},
    {"usedOfTotal", DisplayMode::usedOfTotal},
}};

// Every mode in the order a picker lists them.
inline constexpr auto allDisplayModes = valuesOf(displayModeWords);

// The mode's serialised word.
std::string_view rawValue(DisplayMode mode);

// The localised name of the mode ("Used percentage", …).
std::string label(DisplayMode mode);

// Exact, case-sensitive match of the five raw values; anything else is no value.
std::optional<DisplayMode> displayModeFromRaw(std::string_view raw);

}  // namespace korvo
