#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "app/awake_session.hpp"

// Any awake.json gives a session or a reason; a session has a finite end or none, and reads back
// the same from the document korvo writes for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view document(reinterpret_cast<const char*>(data), size);
  const auto parsed = korvo::parseAwakeState(document);
  if (const auto* failure = std::get_if<korvo::DecodeFailure>(&parsed)) {
    if (failure->reason.empty()) std::abort();
    return 0;
  }
  const auto& session = std::get<korvo::AwakeSession>(parsed);
  if (session.endsAt && !std::isfinite(session.endsAt->secondsSinceReferenceDate)) std::abort();
  const auto again = korvo::parseAwakeState(korvo::awakeStateDocument(session));
  const auto* second = std::get_if<korvo::AwakeSession>(&again);
  if (second == nullptr || !(*second == session)) std::abort();
  return 0;
}
