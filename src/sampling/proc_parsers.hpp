#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

// Pure parsers of the kernel's text files; file access lives in the sampler.
namespace korvo {

// The /proc/meminfo figures the memory reading needs, converted from kB to bytes.
struct Meminfo {
  std::uint64_t memTotal = 0;              // MemTotal, bytes
  std::uint64_t memFree = 0;               // MemFree, bytes
  std::uint64_t active = 0;                // Active (anon + file LRU), bytes
  std::uint64_t inactive = 0;              // Inactive (anon + file LRU), bytes
  std::uint64_t activeFile = 0;            // Active(file), bytes
  std::uint64_t inactiveFile = 0;          // Inactive(file), bytes
  std::uint64_t unevictable = 0;           // Unevictable, bytes
  std::uint64_t reclaimable = 0;           // KReclaimable, else SReclaimable, bytes
  std::uint64_t zswap = 0;                 // Zswap (0 when the line is absent), bytes
  std::optional<std::uint64_t> swapTotal;  // SwapTotal, bytes; absent without the line
  std::optional<std::uint64_t> swapFree;   // SwapFree, bytes; absent without the line

  friend bool operator==(const Meminfo&, const Meminfo&) = default;
};

// No value when a required line (MemTotal, MemFree, Active, Inactive, Active(file),
// Inactive(file), Unevictable, and SReclaimable when KReclaimable is absent) is missing, or a line
// it reads holds no kB number that fits 64 bits once in bytes. A garbled SwapTotal or SwapFree
// leaves both swap figures absent instead.
std::optional<Meminfo> parse_meminfo(std::string_view text);

// MemTotal alone, bytes; no value when the line is missing or malformed.
std::optional<std::uint64_t> parse_mem_total(std::string_view text);

// /proc/pressure/memory to a kernel level: 4 when full avg10 >= 10, else 2 when some avg10 >= 10,
// else 1; 0 when the text is malformed or lacks either line.
std::int32_t parse_pressure_level(std::string_view text);

// The third field of a zram mm_stat (mem_used_total, bytes); no value when malformed.
std::optional<std::uint64_t> parse_zram_mm_stat(std::string_view text);

// CPU tick counters of the first "cpu" line of /proc/stat, in the order user, system, idle, nice
// (fields 1, 3, 4, 2 of that line).
using CpuTicks = std::array<std::uint64_t, 4>;
std::optional<CpuTicks> parse_cpu_ticks(std::string_view text);

// The six page counts a memory reading is built from.
struct PageCounts {
  std::uint64_t active = 0;      // Active, pages
  std::uint64_t inactive = 0;    // Inactive + reclaimable, pages
  std::uint64_t wired = 0;       // Unevictable + whatever no other category accounts for, pages
  std::uint64_t compressed = 0;  // Zswap + zram pool, pages
  std::uint64_t purgeable = 0;   // reclaimable kernel caches, pages
  std::uint64_t external = 0;    // file LRU, pages

  friend bool operator==(const PageCounts&, const PageCounts&) = default;
};

// Maps meminfo and the zram pool (bytes) onto page counts; no value when a sum of figures does not
// fit 64 bits or the page size is 0.
std::optional<PageCounts> page_counts(const Meminfo& meminfo, std::uint64_t zramBytes,
                                      std::uint64_t pageSize);

// SwapTotal - SwapFree, bytes; absent when either is missing or SwapFree exceeds SwapTotal.
std::optional<std::uint64_t> swap_used(const Meminfo& meminfo);

}  // namespace korvo
