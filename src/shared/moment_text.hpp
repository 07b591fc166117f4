#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.hpp"

namespace korvo {

// ISO 8601 with a zone ("2026-11-15T01:45:00Z", "2026-11-15T02:45:00.5+01:00"); none for
// anything else, including impossible dates such as February 30 and moments without a zone.
std::optional<Date> parseIsoMoment(std::string_view text);

// A moment given by a person or a tool: ISO 8601 as above or Unix seconds ("1794707100",
// "1794707100.25").
std::optional<Date> parseMoment(std::string_view text);

// The moment in UTC as ISO 8601 with milliseconds when it has any: "2026-11-15T01:45:00Z".
std::string isoMoment(Date moment);

}  // namespace korvo
