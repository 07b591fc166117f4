#pragma once

#include <optional>

#include "base/date.hpp"

namespace korvo {

// When the widget host should ask a provider for a new timeline: after a date, or never.
struct ReloadPolicy {
  std::optional<Date> date;  // the moment to ask again; absent = never

  static ReloadPolicy after(Date moment) { return {moment}; }
  static ReloadPolicy never() { return {}; }

  friend bool operator==(const ReloadPolicy&, const ReloadPolicy&) = default;
};

}  // namespace korvo
