#pragma once

#include "base/date.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// Age in seconds beyond which the footer calls the data stale (exactly this age is still fresh).
inline constexpr double lastUpdatedStaleAfterSeconds = 900;

// "Updated 4 min ago" / "Stale · 2 hr ago": the age of the data behind a monitor widget. The
// prefix is decided against `now`; the span is a live text that keeps counting.
struct LastUpdatedFooter {
  Date now;         // the reference moment: the entry's date
  Date dataMoment;  // when the data shown was produced

  // True when now − dataMoment exceeds the limit; a data moment after now is fresh.
  bool isStale() const;
  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const LastUpdatedFooter&, const LastUpdatedFooter&) = default;
};

}  // namespace korvo
