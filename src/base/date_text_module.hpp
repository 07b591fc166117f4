#pragma once

#include <string>

#include "base/date.hpp"

namespace korvo {

// The ICU side of date_text.hpp, built as a module of its own and loaded on the first date text:
// ICU's libraries bind tens of thousands of symbols as they load, which would cost every command
// that shows no date more than the rest of its work.
struct DateTextFunctions {
  std::string (*shortTime)(Date moment);
  std::string (*abbreviatedDateShortTime)(Date moment);
  std::string (*relativeSpan)(Date dataMoment, Date now);
  std::string (*monthDayShortTime)(Date moment);
  std::string (*weekday)(Date moment);
};

// The symbol the module exports: a function returning its DateTextFunctions.
inline constexpr const char* dateTextEntryPoint = "korvo_date_text_functions";
using DateTextEntryPoint = const DateTextFunctions* (*)();

}  // namespace korvo
