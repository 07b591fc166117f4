#include "extension/memory_provider.hpp"

#include "base/clock.hpp"
#include "extension/sample_data.hpp"
#include "sampling/system_sampler.hpp"

namespace korvo {
namespace {

// A sampler for this request only, released as soon as it has read.
std::optional<MemorySnapshot> freshReading(const TimelineContext& context) {
  const SystemSampler sampler =
      context.systemRoot ? SystemSampler(*context.systemRoot) : SystemSampler::fromEnvironment();
  return sampler.readMemory();
}

}  // namespace

MemoryEntry MemoryProvider::placeholder(const TimelineContext&) const {
  const Date now = clock::now();
  return MemoryEntry{.date = now, .memory = SampleData::memoryReading(now)};
}

void MemoryProvider::getSnapshot(const TimelineContext& context,
                                 const std::function<void(MemoryEntry)>& completion) const {
  if (context.isPreview) {
    completion(placeholder(context));
    return;
  }
  const Date now = clock::now();
  completion(MemoryEntry{.date = now, .memory = freshReading(context)});
}

void MemoryProvider::getTimeline(
    const TimelineContext& context,
    const std::function<void(Timeline<MemoryEntry>)>& completion) const {
  const Date now = clock::now();
  completion(
      Timeline<MemoryEntry>{.entries = {MemoryEntry{.date = now, .memory = freshReading(context)}},
                            .policy = ReloadPolicy::after(now.addingSeconds(reloadInterval))});
}

}  // namespace korvo
