#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "sources/codex_rollouts.hpp"

// Any memo file reads as some memo, never a crash; what it reads as is written back the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const korvo::RolloutMemo memo = korvo::parseMemo(text);
  for (const auto& [path, seen] : memo.fruitless) {
    if (path.empty() || path.front() != '/') std::abort();
  }
  korvo::RolloutMemo again = korvo::parseMemo(korvo::memoText(memo));
  if (again.fruitless != memo.fruitless) std::abort();
  return 0;
}
