#pragma once

#include <cstddef>
#include <optional>
#include <utility>

#include "base/date.hpp"
#include "model/timeline.hpp"

namespace korvo {

// Which entry of a timeline is on screen at a moment, and when that changes. Both the headless
// renderer and the desktop host pick entries through it, so they always agree.
template <class Entry>
class TimelineCursor {
 public:
  // The timeline, showing the entry current at `now`: the last one dated at or before it, else
  // the first.
  TimelineCursor(Timeline<Entry> timeline, Date now) : timeline_(std::move(timeline)) {
    moveTo(now);
  }

  bool empty() const { return timeline_.entries.empty(); }
  // The entry on screen; the timeline must not be empty.
  const Entry& current() const { return timeline_.entries[index_]; }
  const Timeline<Entry>& timeline() const { return timeline_; }

  // Shows the entry current at `now`.
  void moveTo(Date now) {
    index_ = 0;
    for (std::size_t index = 1; index < timeline_.entries.size(); ++index) {
      if (timeline_.entries[index].date <= now) index_ = index;
    }
  }

  // The next entry's date when it comes before the reload date; none when the next change is
  // the reload (or nothing).
  std::optional<Date> nextEntryDate() const {
    if (index_ + 1 >= timeline_.entries.size()) return std::nullopt;
    const Date next = timeline_.entries[index_ + 1].date;
    if (timeline_.policy.date && !(next < *timeline_.policy.date)) return std::nullopt;
    return next;
  }

  // When the host must act next: the next entry's date or the reload date, whichever comes
  // first; none for a last entry that never reloads.
  std::optional<Date> nextChange() const {
    if (const auto next = nextEntryDate()) return next;
    return timeline_.policy.date;
  }

 private:
  Timeline<Entry> timeline_;
  std::size_t index_ = 0;
};

}  // namespace korvo
