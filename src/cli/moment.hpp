#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.hpp"

namespace korvo::cli {

// A moment given on the command line: ISO 8601 with a zone ("2026-11-15T01:45:00Z",
// "2026-11-15T02:45:00.5+01:00") or Unix seconds ("1794707100", "1794707100.25"). None for
// anything else, including impossible dates such as February 30.
std::optional<Date> parseMoment(std::string_view text);

// The moment in UTC as ISO 8601 with milliseconds when it has any: "2026-11-15T01:45:00Z".
std::string isoMoment(Date moment);

}  // namespace korvo::cli
