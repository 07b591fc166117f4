#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "app/settings.hpp"

// Any document gives settings or a reason; settings always lie in their ranges and read back
// the same from the document korvo prints.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view document(reinterpret_cast<const char*>(data), size);
  const auto parsed = korvo::parseSettings(document);
  if (const auto* failure = std::get_if<korvo::DecodeFailure>(&parsed)) {
    if (failure->reason.empty()) std::abort();
    return 0;
  }
  const auto& settings = std::get<korvo::Settings>(parsed);
  if (settings.publishSeconds < 5 || settings.publishSeconds > 3600) std::abort();
  if (settings.awakeMinutes < 1 || settings.awakeMinutes > 1440) std::abort();
  const auto again = korvo::parseSettings(korvo::settingsDocument(settings).dump());
  const auto* second = std::get_if<korvo::Settings>(&again);
  if (second == nullptr || !(*second == settings)) std::abort();
  return 0;
}
