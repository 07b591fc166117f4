#pragma once

#include <string>

#include "base/words.hpp"

namespace korvo {

// How korvo's own texts write a temperature; the widgets always write Celsius.
enum class TemperatureUnit { celsius, fahrenheit };

inline constexpr Words<TemperatureUnit, 2> temperatureUnitWords{{
    {"C", TemperatureUnit::celsius},
    {"F", TemperatureUnit::fahrenheit},
}};

// `celsius` in `unit`.
double inUnit(double celsius, TemperatureUnit unit);

// Whole degrees in `unit`, as the widgets write Celsius: "54°C", "129°F".
std::string degreesText(double celsius, TemperatureUnit unit);

}  // namespace korvo
