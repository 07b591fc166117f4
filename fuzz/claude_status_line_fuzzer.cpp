#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "sources/claude_status_line.hpp"

// Any input gives at most the two windows, "5-hour" before "Weekly", with figures from 0 to 1,000.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto windows = korvo::claude_status_line::parseInput(input).windows;
  if (windows.size() > 2) std::abort();
  for (std::size_t i = 0; i < windows.size(); ++i) {
    if (windows[i].title != "5-hour" && windows[i].title != "Weekly") std::abort();
    if (i == 1 && windows[0].title != "5-hour") std::abort();
    if (!(windows[i].usedPercent >= 0 && windows[i].usedPercent <= 1000)) std::abort();
  }
  return 0;
}
