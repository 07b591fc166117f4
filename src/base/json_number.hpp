#pragma once

#include <string>

namespace korvo {

// Appends `value` (finite) as JSON: integral values below 2^53 in magnitude as integers
// ("816399900"), every other value in its shortest form that reads back to the same double
// ("52.5", "1e+25"). One rule for every document the programs write.
void appendJsonNumber(std::string& out, double value);

}  // namespace korvo
