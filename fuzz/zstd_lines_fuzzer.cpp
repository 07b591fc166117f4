#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "sources/zstd_line_reader.hpp"

// Any bytes in a rollout-….jsonl.zst: decoding ends (complete or not), every line handed is
// one line within the line limit, and all of them together stay within the expansion limit.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int file = ::memfd_create("rollout.jsonl.zst", 0);
  if (file < 0 || ::ftruncate(file, 0) != 0 ||
      ::pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) {
    std::abort();
  }
  std::uint64_t handed = 0;
  const auto outcome = korvo::zstd_lines::forEachLine(
      "/proc/self/fd/" + std::to_string(file), [&](std::string_view line) {
        if (line.find('\n') != std::string_view::npos) std::abort();
        if (line.size() > korvo::zstd_lines::maxLineBytes) std::abort();
        handed += line.size() + 1;
      });
  if (handed > korvo::zstd_lines::maxExpandedBytes) std::abort();
  if (outcome.bytesRead > size) std::abort();
  return 0;
}
