#include <unicode/datefmt.h>
#include <unicode/fieldpos.h>
#include <unicode/measfmt.h>
#include <unicode/measunit.h>
#include <unicode/measure.h>
#include <unicode/unistr.h>

#include <cmath>
#include <memory>
#include <vector>

#include "base/date_text_module.hpp"

namespace korvo {
namespace {

constexpr double secondsPerMinute = 60;
constexpr double secondsPerHour = 3600;
constexpr double secondsPerDay = 86400;

// ICU 72 puts a narrow no-break space before the day period ("1:44\u202FAM"); the widgets show the
// ordinary space that users read everywhere else on the desktop.
std::string toDisplayUtf8(const icu::UnicodeString& text) {
  icu::UnicodeString copy(text);
  copy.findAndReplace(icu::UnicodeString(static_cast<UChar>(0x202F)),
                      icu::UnicodeString(static_cast<UChar>(0x20)));
  std::string out;
  copy.toUTF8String(out);
  return out;
}

UDate icuMoment(Date moment) {
  return moment.unixSeconds() * 1000.0;
}

std::string formatWith(icu::DateFormat* format, Date moment) {
  if (format == nullptr || !std::isfinite(moment.secondsSinceReferenceDate)) return {};
  icu::UnicodeString text;
  format->format(icuMoment(moment), text);
  return toDisplayUtf8(text);
}

std::string shortTime(Date moment) {
  std::unique_ptr<icu::DateFormat> format(
      icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, icu::Locale::getDefault()));
  return formatWith(format.get(), moment);
}

std::string abbreviatedDateShortTime(Date moment) {
  std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
      icu::DateFormat::kMedium, icu::DateFormat::kShort, icu::Locale::getDefault()));
  return formatWith(format.get(), moment);
}

std::string relativeSpan(Date dataMoment, Date now) {
  const double age = std::fabs(now.secondsSince(dataMoment));
  if (!std::isfinite(age)) return {};
  const double whole = std::floor(age);

  UErrorCode status = U_ZERO_ERROR;
  std::vector<icu::Measure> measures;
  auto add = [&](double amount, icu::MeasureUnit* unit) {
    measures.emplace_back(icu::Formattable(amount), unit, status);
  };
  if (whole < secondsPerMinute) {
    add(whole, icu::MeasureUnit::createSecond(status));
  } else if (whole < secondsPerHour) {
    add(std::floor(whole / secondsPerMinute), icu::MeasureUnit::createMinute(status));
  } else if (whole < secondsPerDay) {
    const double minutes = std::floor(whole / secondsPerMinute);
    add(std::floor(minutes / 60), icu::MeasureUnit::createHour(status));
    if (std::fmod(minutes, 60) != 0)
      add(std::fmod(minutes, 60), icu::MeasureUnit::createMinute(status));
  } else {
    const double hours = std::floor(whole / secondsPerHour);
    add(std::floor(hours / 24), icu::MeasureUnit::createDay(status));
    if (std::fmod(hours, 24) != 0) add(std::fmod(hours, 24), icu::MeasureUnit::createHour(status));
  }
  icu::MeasureFormat format(icu::Locale::getDefault(), UMEASFMT_WIDTH_SHORT, status);
  icu::UnicodeString text;
  icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
  format.formatMeasures(measures.data(), static_cast<int32_t>(measures.size()), text, position,
                        status);
  if (U_FAILURE(status)) return {};
  return toDisplayUtf8(text);
}

}  // namespace
}  // namespace korvo

extern "C" __attribute__((visibility("default"))) const korvo::DateTextFunctions*
korvo_date_text_functions() {
  static constexpr korvo::DateTextFunctions functions{
      korvo::shortTime, korvo::abbreviatedDateShortTime, korvo::relativeSpan};
  return &functions;
}
