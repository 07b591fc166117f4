#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/decode_result.hpp"
#include "shared/widget_snapshot.hpp"

namespace korvo {

// The shared file's bytes for a snapshot, as the host writes them: one compact line, keys in
// field order, absent optionals left out, integral numbers below 2^53 without a fraction. None
// when a number is not finite.
std::optional<std::string> encodeWidgetSnapshot(const WidgetSnapshot& snapshot);

// Decodes the shared file strictly (see usage_json.hpp). A leading UTF-8 byte-order mark is
// skipped; a key repeated within one object makes the file unreadable, so that no two readers can
// disagree about which value counts.
Decoded<WidgetSnapshot> decodeWidgetSnapshot(std::string_view json);

}  // namespace korvo
