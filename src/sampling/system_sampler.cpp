#include "sampling/system_sampler.hpp"

#include <dirent.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "sampling/checked_arithmetic.hpp"
#include "sampling/small_file.hpp"

namespace korvo {
namespace {

// Every file the sampler reads is a few kilobytes at most; the bound keeps a stray device or
// huge file from costing more than one buffer.
constexpr std::size_t fileCap = std::size_t{64} * 1024;
using Buffer = std::array<char, fileCap>;

// Plain concatenation: cheaper than path arithmetic, and the sampler is built per request.
std::string under(const std::filesystem::path& root, std::string_view relative) {
  std::string path = root.native();
  while (!path.empty() && path.back() == '/') path.pop_back();
  path += relative;
  return path;
}

// Sum of mem_used_total over every zram device; a device whose mm_stat is unreadable counts 0.
std::optional<std::uint64_t> zramPoolBytes(const std::string& blockPath, Buffer& buffer) {
  DIR* directory = ::opendir(blockPath.c_str());
  if (directory == nullptr) return 0;
  std::uint64_t sum = 0;
  bool fits = true;
  std::array<char, 4096> path{};
  while (const dirent* entry = ::readdir(directory)) {
    if (std::strncmp(entry->d_name, "zram", 4) != 0) continue;
    const int length =
        std::snprintf(path.data(), path.size(), "%s/%s/mm_stat", blockPath.c_str(), entry->d_name);
    if (length < 0 || static_cast<std::size_t>(length) >= path.size()) continue;
    const auto text = readSmallFile(path.data(), buffer);
    const auto used = text ? parse_zram_mm_stat(*text) : std::nullopt;
    if (used && __builtin_add_overflow(sum, *used, &sum)) fits = false;
  }
  ::closedir(directory);
  if (!fits) return std::nullopt;
  return sum;
}

}  // namespace

SystemSampler::SystemSampler(const std::filesystem::path& root, std::uint64_t pageSize)
    : meminfoPath_(under(root, "/proc/meminfo")),
      pressurePath_(under(root, "/proc/pressure/memory")),
      blockPath_(under(root, "/sys/block")),
      statPath_(under(root, "/proc/stat")),
      pageSize_(pageSize) {
  Buffer buffer;
  if (const auto text = readSmallFile(meminfoPath_.c_str(), buffer)) {
    total_ = parse_mem_total(*text);
  }
}

SystemSampler SystemSampler::fromEnvironment() {
  const char* root = std::getenv("KORVO_SYSROOT");
  return SystemSampler(root != nullptr && *root != '\0' ? root : "/");
}

std::uint64_t SystemSampler::systemPageSize() {
  const long size = ::sysconf(_SC_PAGESIZE);
  return size > 0 ? static_cast<std::uint64_t>(size) : 0;
}

std::optional<KernelMemory> SystemSampler::readKernelMemory() const {
  Buffer buffer;
  const auto meminfoText = readSmallFile(meminfoPath_.c_str(), buffer);
  if (!meminfoText) return std::nullopt;
  const auto meminfo = parse_meminfo(*meminfoText);
  if (!meminfo) return std::nullopt;

  const auto zram = zramPoolBytes(blockPath_, buffer);
  if (!zram) return std::nullopt;
  const auto pages = page_counts(*meminfo, *zram, pageSize_);
  if (!pages) return std::nullopt;

  const auto pressureText = readSmallFile(pressurePath_.c_str(), buffer);
  const std::int32_t level = pressureText ? parse_pressure_level(*pressureText) : 0;

  return KernelMemory{pageSize_, *pages, swap_used(*meminfo), level};
}

std::optional<MemorySnapshot> SystemSampler::readMemory() const {
  if (!total_) return std::nullopt;
  const auto kernel = readKernelMemory();
  if (!kernel) return std::nullopt;
  const PageCounts& pages = kernel->pages;
  return MemorySnapshot::fromPageCounts(*total_, kernel->pageSize, pages.active, pages.inactive,
                                        pages.wired, pages.compressed, pages.purgeable,
                                        pages.external, kernel->swap,
                                        pressureFromKernelLevel(kernel->pressureLevel));
}

std::optional<double> SystemSampler::readCPU() {
  std::array<char, 4096> buffer;
  const auto text = readFileStart(statPath_.c_str(), buffer);
  const auto current = text ? parse_cpu_ticks(*text) : std::nullopt;
  if (!current) return std::nullopt;
  if (!previousCPU_) {
    previousCPU_ = current;
    return std::nullopt;
  }

  // Deltas on the low 32 bits, so a counter that wrapped past 2^32 still gives its small step.
  CpuTicks deltas{};
  std::uint64_t ticks = 0;
  for (std::size_t i = 0; i < deltas.size(); ++i) {
    deltas[i] = static_cast<std::uint32_t>((*current)[i] - (*previousCPU_)[i]);
    ticks = checked::add(ticks, deltas[i]);
  }
  previousCPU_ = current;
  if (ticks == 0) return std::nullopt;
  const std::uint64_t idle = deltas[2];
  return static_cast<double>(ticks - idle) / static_cast<double>(ticks);
}

}  // namespace korvo
