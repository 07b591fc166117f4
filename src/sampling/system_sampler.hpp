#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "sampling/memory_snapshot.hpp"
#include "sampling/proc_parsers.hpp"

namespace korvo {

// What the kernel said in one memory reading, before the snapshot's clamping.
struct KernelMemory {
  std::uint64_t pageSize = 0;         // bytes per page
  PageCounts pages;                   // the six page counts
  std::optional<std::uint64_t> swap;  // swap in use, bytes
  std::int32_t pressureLevel = 0;     // kernel level from PSI (0 when unavailable)

  friend bool operator==(const KernelMemory&, const KernelMemory&) = default;
};

// Takes memory and CPU readings from /proc and /sys under one root directory. Not synchronised:
// one owner uses it from one thread at a time.
class SystemSampler {
 public:
  // Reads MemTotal under `root` once; `pageSize` defaults to sysconf(_SC_PAGESIZE).
  explicit SystemSampler(const std::filesystem::path& root = "/",
                         std::uint64_t pageSize = systemPageSize());

  // A sampler over $KORVO_SYSROOT when it is set and not empty, else over "/".
  static SystemSampler fromEnvironment();

  static std::uint64_t systemPageSize();

  // Physical memory in bytes as read at construction; absent when MemTotal could not be read.
  std::optional<std::uint64_t> total() const { return total_; }

  // The figures of one reading; absent when meminfo is missing, incomplete or out of range.
  std::optional<KernelMemory> readKernelMemory() const;

  // One memory reading; absent when the kernel's figures cannot be read.
  std::optional<MemorySnapshot> readMemory() const;

  // Fraction of non-idle CPU ticks since the previous call; absent on the first call, when
  // /proc/stat cannot be read, and when no ticks elapsed.
  std::optional<double> readCPU();

 private:
  std::string meminfoPath_;
  std::string pressurePath_;
  std::string blockPath_;
  std::string statPath_;
  std::uint64_t pageSize_;
  std::optional<std::uint64_t> total_;
  std::optional<CpuTicks> previousCPU_;
};

}  // namespace korvo
