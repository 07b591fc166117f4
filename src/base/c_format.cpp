#include "base/c_format.hpp"

#include <clocale>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace korvo {
namespace {

locale_t cLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  return locale;
}

}  // namespace

std::string cFormat(const char* format, ...) {
  const locale_t previous = uselocale(cLocale());
  va_list arguments;
  va_start(arguments, format);
  va_list copy;
  va_copy(copy, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text;
  if (length > 0) {
    text.resize(static_cast<std::size_t>(length));
    std::vsnprintf(text.data(), text.size() + 1, format, copy);
  }
  va_end(copy);
  uselocale(previous);
  return text;
}

std::string wholeFigure(double value) {
  constexpr double largestWhole = 1e6;
  return std::fabs(value) < largestWhole ? cFormat("%.0f", value) : cFormat("%.3g", value);
}

}  // namespace korvo
