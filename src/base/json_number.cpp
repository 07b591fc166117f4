#include "base/json_number.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace korvo {

void appendJsonNumber(std::string& out, double value) {
  constexpr double twoToThe53 = 9007199254740992.0;  // beyond it not every integer is a double
  char buffer[32];
  std::to_chars_result result{};
  if (std::trunc(value) == value && std::fabs(value) < twoToThe53) {
    result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<std::int64_t>(value));
  } else {
    result = std::to_chars(buffer, buffer + sizeof buffer, value);
  }
  out.append(buffer, result.ptr);
}

}  // namespace korvo
