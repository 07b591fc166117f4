#pragma once

#include <string>

namespace korvo {

// printf-style formatting in the C locale whatever the process locale is: "." as the decimal
// separator, no grouping, and the C library's rounding (exact halves to even).
[[gnu::format(printf, 1, 2)]] std::string cFormat(const char* format, ...);

}  // namespace korvo
