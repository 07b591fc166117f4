#pragma once

#include <unicode/locid.h>
#include <unicode/timezone.h>

namespace korvo::testing_support {

// Pins the texts to US English in UTC, whatever the machine's settings.
inline void useEnglishInUtc() {
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("en_US"), status);
  icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("UTC"));
}

}  // namespace korvo::testing_support
