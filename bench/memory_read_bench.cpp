#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
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

// One reading from a sampler that already exists: the per-reading share of the above.
void BM_ReadingFromAnExistingSampler(benchmark::State& state) {
  const korvo::SystemSampler sampler;
  for (auto _ : state) {
    auto snapshot = sampler.readMemory();
    benchmark::DoNotOptimize(snapshot);
  }
}
BENCHMARK(BM_ReadingFromAnExistingSampler);

std::size_t bareRead(const char* path, std::array<char, 16384>& buffer) {
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return 0;
  const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
  ::close(descriptor);
  std::size_t lines = 0;
  for (ssize_t i = 0; i < count; ++i) lines += buffer[static_cast<std::size_t>(i)] == '\n';
  return lines;
}

// The floor: one open and read of /proc/meminfo and a scan for line ends, no parsing.
void BM_BareMeminfoRead(benchmark::State& state) {
  std::array<char, 16384> buffer;
  for (auto _ : state) benchmark::DoNotOptimize(bareRead("/proc/meminfo", buffer));
}
BENCHMARK(BM_BareMeminfoRead);

// Bare reads of every file a provider's reading touches (meminfo at construction and again for
// the reading, PSI, the /sys/block listing and each zram mm_stat): the kernel's share.
void BM_BareReadOfEveryFile(benchmark::State& state) {
  std::array<char, 16384> buffer;
  std::array<char, 512> path;
  for (auto _ : state) {
    std::size_t lines = bareRead("/proc/meminfo", buffer) + bareRead("/proc/meminfo", buffer) +
                        bareRead("/proc/pressure/memory", buffer);
    if (DIR* directory = ::opendir("/sys/block")) {
      while (const dirent* entry = ::readdir(directory)) {
        if (std::strncmp(entry->d_name, "zram", 4) != 0) continue;
        std::snprintf(path.data(), path.size(), "/sys/block/%s/mm_stat", entry->d_name);
        lines += bareRead(path.data(), buffer);
      }
      ::closedir(directory);
    }
    benchmark::DoNotOptimize(lines);
  }
}
BENCHMARK(BM_BareReadOfEveryFile);

}  // namespace
