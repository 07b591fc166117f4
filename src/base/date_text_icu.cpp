#include <unicode/datefmt.h>
#include <unicode/decimfmt.h>
#include <unicode/fieldpos.h>
#include <unicode/measfmt.h>
#include <unicode/measunit.h>
#include <unicode/measure.h>
#include <unicode/numberformatter.h>
#include <unicode/unistr.h>

#include <array>
#include <cmath>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
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

std::string monthDayShortTime(Date moment) {
  UErrorCode status = U_ZERO_ERROR;
  // The locale's own order and punctuation for a month, a day and a time of day.
  std::unique_ptr<icu::DateFormat> format(
      icu::DateFormat::createInstanceForSkeleton("MMMdjmm", icu::Locale::getDefault(), status));
  if (U_FAILURE(status)) return {};
  return formatWith(format.get(), moment);
}

std::string weekday(Date moment) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createInstanceForSkeleton(
      icu::UnicodeString("EEEE"), icu::Locale::getDefault(), status));
  return U_FAILURE(status) ? std::string() : formatWith(format.get(), moment);
}

enum class SpanUnit { second, minute, hour, day };

icu::MeasureUnit measureUnit(SpanUnit unit) {
  switch (unit) {
    case SpanUnit::second:
      return icu::MeasureUnit::getSecond();
    case SpanUnit::minute:
      return icu::MeasureUnit::getMinute();
    case SpanUnit::hour:
      return icu::MeasureUnit::getHour();
    case SpanUnit::day:
      break;
  }
  return icu::MeasureUnit::getDay();
}

using SpanFormatter = icu::number::LocalizedNumberFormatter;

// One formatter per unit in `locale`, each as MeasureFormat formats a single measure: the locale's
// decimal format as a number formatter, with the unit in short width.
std::array<std::optional<SpanFormatter>, 4> spanFormatters(const icu::Locale& locale) {
  std::array<std::optional<SpanFormatter>, 4> built;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::NumberFormat> decimal(
      icu::NumberFormat::createInstance(locale, UNUM_DECIMAL, status));
  const auto* format = dynamic_cast<const icu::DecimalFormat*>(decimal.get());
  const SpanFormatter* numbers = format != nullptr ? format->toNumberFormatter(status) : nullptr;
  if (U_FAILURE(status) || numbers == nullptr) return built;
  for (const SpanUnit unit : {SpanUnit::second, SpanUnit::minute, SpanUnit::hour, SpanUnit::day}) {
    built[static_cast<std::size_t>(unit)] =
        numbers->unit(measureUnit(unit)).unitWidth(UNUM_UNIT_WIDTH_SHORT);
  }
  return built;
}

// A span of one unit, from formatters kept while ICU's default locale stays the same: ICU
// compiles a formatter after its first uses, where MeasureFormat sets one up from the locale's
// data again for every text, which a host updating its cards every minute would repeat.
std::optional<std::string> oneUnitSpan(double amount, SpanUnit unit) {
  static std::mutex guard;
  static std::optional<std::string> localeName;
  static std::array<std::optional<SpanFormatter>, 4> formatters;
  const std::lock_guard lock(guard);
  const icu::Locale& locale = icu::Locale::getDefault();
  if (localeName != locale.getName()) {
    formatters = spanFormatters(locale);
    localeName = locale.getName();
  }
  const auto& formatter = formatters[static_cast<std::size_t>(unit)];
  if (!formatter) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString text = formatter->formatDouble(amount, status).toString(status);
  if (U_FAILURE(status)) return std::nullopt;
  return toDisplayUtf8(text);
}

std::string relativeSpan(Date dataMoment, Date now) {
  const double age = std::fabs(now.secondsSince(dataMoment));
  if (!std::isfinite(age)) return {};
  const double whole = std::floor(age);

  std::vector<std::pair<double, SpanUnit>> parts;
  if (whole < secondsPerMinute) {
    parts = {{whole, SpanUnit::second}};
  } else if (whole < secondsPerHour) {
    parts = {{std::floor(whole / secondsPerMinute), SpanUnit::minute}};
  } else if (whole < secondsPerDay) {
    const double minutes = std::floor(whole / secondsPerMinute);
    parts = {{std::floor(minutes / 60), SpanUnit::hour}};
    if (std::fmod(minutes, 60) != 0) parts.emplace_back(std::fmod(minutes, 60), SpanUnit::minute);
  } else {
    const double hours = std::floor(whole / secondsPerHour);
    parts = {{std::floor(hours / 24), SpanUnit::day}};
    if (std::fmod(hours, 24) != 0) parts.emplace_back(std::fmod(hours, 24), SpanUnit::hour);
  }
  if (parts.size() == 1) {
    if (auto text = oneUnitSpan(parts.front().first, parts.front().second)) return *text;
  }

  UErrorCode status = U_ZERO_ERROR;
  std::vector<icu::Measure> measures;
  measures.reserve(parts.size());
  for (const auto& [amount, unit] : parts) {
    measures.emplace_back(icu::Formattable(amount), measureUnit(unit).clone(), status);
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
      korvo::shortTime, korvo::abbreviatedDateShortTime, korvo::relativeSpan,
      korvo::monthDayShortTime, korvo::weekday};
  return &functions;
}
