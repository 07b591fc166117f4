#pragma once

namespace korvo::ui {

// The filled share of a meter: `fraction` clamped to 0…1, and 0 for NaN and both infinities
// (an infinite fraction is no reading, not a full bar).
double meterFillFactor(double fraction);

}  // namespace korvo::ui
