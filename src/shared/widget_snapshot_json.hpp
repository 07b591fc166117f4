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

// What a writer of the shared file keeps of the parts it does not own: each part that decodes on
// its own, even when another part is malformed or missing and the file as a whole does not.
struct WidgetSnapshotParts {
  // The temperature fields, which only make sense together.
  struct Temperature {
    std::optional<double> celsius;  // latest CPU temperature, degrees Celsius
    std::optional<Date> date;       // when it was read
    bool enabled = false;           // the user switched temperature monitoring on

    friend bool operator==(const Temperature&, const Temperature&) = default;
  };

  WidgetSnapshotParts() = default;
  // Every part of a snapshot that decoded whole.
  WidgetSnapshotParts(const WidgetSnapshot& snapshot);

  std::optional<Temperature> temperature;
  std::optional<UsageState> codex;
  std::optional<UsageState> claude;

  friend bool operator==(const WidgetSnapshotParts&, const WidgetSnapshotParts&) = default;
};

// The parts of a shared file's bytes that decode on their own; none when the bytes are not one
// JSON object.
WidgetSnapshotParts decodeWidgetSnapshotParts(std::string_view json);

}  // namespace korvo
