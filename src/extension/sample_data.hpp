#pragma once

#include "base/date.hpp"
#include "sampling/memory_snapshot.hpp"
#include "shared/widget_snapshot.hpp"

// Fixed data for placeholders and gallery previews; never a fallback for failed reads.
namespace korvo::SampleData {

// 16 GiB of memory with normal pressure and no swap figure, built from page counts the way the
// sampler builds a reading, timestamped `now`.
MemorySnapshot memoryReading(Date now);

// Both providers enabled with the same two windows (5-hour 28 % and Weekly 42 % used) fetched
// `now`, and a CPU temperature of 54 °C read `now`.
WidgetSnapshot widgetSnapshot(Date now);

}  // namespace korvo::SampleData
