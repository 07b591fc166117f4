#include "ui/meter_fill.hpp"

#include <algorithm>
#include <cmath>

namespace korvo::ui {

double meterFillFactor(double fraction) {
  if (!std::isfinite(fraction)) return 0;
  return std::clamp(fraction, 0.0, 1.0);
}

}  // namespace korvo::ui
