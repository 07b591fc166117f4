#include "base/date_text.hpp"

#include <dlfcn.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <string>
#include <system_error>

#include "base/date_text_module.hpp"

namespace korvo {
namespace {

constexpr double secondsPerMinute = 60;
constexpr double secondsPerHour = 3600;
constexpr double secondsPerDay = 86400;

// The granularity the span text shows at a given age: seconds under a minute, minutes under a day,
// hours beyond.
double granularity(double age) {
  if (age < secondsPerMinute) return 1;
  if (age < secondsPerDay) return secondsPerMinute;
  return secondsPerHour;
}

std::string noText(Date) {
  return {};
}

std::string noSpan(Date, Date) {
  return {};
}

// Where the module is: beside an installed program (bin/ one level below the prefix, the desktop
// host in libexec/korvo-widgets/ two), else in the build tree the program was built in.
std::filesystem::path modulePath() {
  std::error_code error;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) {
    const auto directory = executable.parent_path();
    for (const auto& prefix : {directory / "..", directory / ".." / ".."}) {
      const auto installed = prefix / KORVO_DATE_TEXT_MODULE_INSTALLED;
      if (std::filesystem::is_regular_file(installed, error)) return installed.lexically_normal();
    }
  }
  return KORVO_DATE_TEXT_MODULE_BUILT;
}

// The module's functions, loaded once; a module that cannot be loaded is said once on standard
// error, and every date text is then empty rather than the program failing.
const DateTextFunctions& functions() {
  static const DateTextFunctions* loaded = [] {
    static constexpr DateTextFunctions none{noText, noText, noSpan};
    const std::string path = modulePath().string();
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* entry = module != nullptr ? dlsym(module, dateTextEntryPoint) : nullptr;
    if (entry == nullptr) {
      std::fprintf(stderr, "%s: dates and times cannot be shown: %s\n",
                   program_invocation_short_name, dlerror());
      return &none;
    }
    return reinterpret_cast<DateTextEntryPoint>(entry)();
  }();
  return *loaded;
}

}  // namespace

std::string shortTime(Date moment) {
  return functions().shortTime(moment);
}

std::string abbreviatedDateShortTime(Date moment) {
  return functions().abbreviatedDateShortTime(moment);
}

std::string relativeSpan(Date dataMoment, Date now) {
  return functions().relativeSpan(dataMoment, now);
}

Date nextRelativeSpanChange(Date dataMoment, Date now) {
  const double age = now.secondsSince(dataMoment);
  if (!std::isfinite(age)) return {std::numeric_limits<double>::infinity()};
  if (age >= 0) {
    const double step = granularity(age);
    return dataMoment.addingSeconds((std::floor(age / step) + 1) * step);
  }
  // A moment in the future: the magnitude shrinks, and the text changes just after it passes the
  // current whole step.
  const double magnitude = -age;
  const double step = granularity(magnitude);
  const double boundary = std::floor(magnitude / step) * step;
  constexpr double justAfter = 0.001;
  return dataMoment.addingSeconds(-boundary + justAfter);
}

}  // namespace korvo
