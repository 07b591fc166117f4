#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/decode_result.hpp"
#include "shared/usage_provider.hpp"
#include "shared/usage_state.hpp"

namespace korvo {

// The JSON form of the usage records: compact, keys in field order, absent optionals left out.
// Encoding fails (none) on a non-finite number. Decoding is strict: required keys, exact JSON
// types, booleans only true/false, dates only as numbers; unknown keys are ignored and a null
// optional is absent. Each decode takes the bytes of one whole JSON document.
std::optional<std::string> encodeUsageWindow(const UsageWindow& window);
std::optional<std::string> encodeUsageSnapshot(const UsageSnapshot& snapshot);
std::optional<std::string> encodeUsageState(const UsageState& state);
// A provider coded by itself is a JSON string of its raw value.
std::string encodeUsageProvider(UsageProvider provider);

Decoded<UsageWindow> decodeUsageWindow(std::string_view json);
Decoded<UsageSnapshot> decodeUsageSnapshot(std::string_view json);
Decoded<UsageState> decodeUsageState(std::string_view json);
Decoded<UsageProvider> decodeUsageProvider(std::string_view json);

}  // namespace korvo
