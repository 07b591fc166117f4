#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "app/claude_settings.hpp"

// Any bytes are refused with a reason or installed into; an install keeps every byte before the
// status line's value, runs korvo, and uninstalling it (with the original as the backup) gives
// back the original bytes exactly.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view original(reinterpret_cast<const char*>(data), size);
  const std::filesystem::path korvo = "/usr/bin/korvo";
  const auto installed = korvo::claude_settings::install(original, korvo);
  if (const auto* failure = std::get_if<korvo::DecodeFailure>(&installed)) {
    if (failure->reason.empty()) std::abort();
    return 0;
  }
  const std::string& bytes = std::get<std::string>(installed);
  const auto document = korvo::claude_settings::parse(bytes);
  const auto* parsed = std::get_if<korvo::claude_settings::Document>(&document);
  if (parsed == nullptr || !korvo::claude_settings::runsKorvo(*parsed, korvo)) std::abort();
  if (korvo::claude_settings::install(bytes, korvo) != installed) std::abort();
  const std::string restored =
      korvo::claude_settings::uninstall(bytes, std::string(original), korvo);
  if (restored != original) std::abort();
  return 0;
}
