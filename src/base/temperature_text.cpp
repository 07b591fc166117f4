#include "base/temperature_text.hpp"

#include "base/c_format.hpp"

namespace korvo {

double inUnit(double celsius, TemperatureUnit unit) {
  return unit == TemperatureUnit::fahrenheit ? celsius * 9 / 5 + 32 : celsius;
}

std::string degreesText(double celsius, TemperatureUnit unit) {
  const double degrees = inUnit(celsius, unit);
  return unit == TemperatureUnit::fahrenheit ? cFormat("%.0f°F", degrees)
                                             : cFormat("%.0f°C", degrees);
}

}  // namespace korvo
