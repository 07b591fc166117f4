#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "sampling/system_sampler.hpp"

namespace {

// What the memory provider does per request: a fresh sampler, one reading, released.
void BM_ProviderMemoryReading(benchmark::State& state) {
  for (auto _ : state) {
    const korvo::SystemSampler sampler;
    auto snapshot = sampler.readMemory();
    benchmark::DoNotOptimize(snapshot);
  }
}
BENCHMARK(BM_ProviderMemoryReading);

// The floor: one open and read of /proc/meminfo and a scan for line ends, no parsing.
void BM_BareMeminfoRead(benchmark::State& state) {
  std::array<char, 16384> buffer;
  for (auto _ : state) {
    const int descriptor = ::open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    ::close(descriptor);
    std::size_t lines = 0;
    for (ssize_t i = 0; i < count; ++i) lines += buffer[static_cast<std::size_t>(i)] == '\n';
    benchmark::DoNotOptimize(lines);
  }
}
BENCHMARK(BM_BareMeminfoRead);

}  // namespace
