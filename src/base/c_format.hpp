#pragma once

#include <string>

namespace korvo {

// printf-style formatting in the C locale whatever the process locale is: "." as the decimal
// separator, no grouping, and the C library's rounding (exact halves to even).
[[gnu::format(printf, 1, 2)]] std::string cFormat(const char* format, ...);

// `value` rounded to a whole number ("72", "-3"), or, past a million either way, in three
// significant digits with an exponent ("1e+300"), so a figure from outside never runs to hundreds
// of digits.
std::string wholeFigure(double value);

}  // namespace korvo
