#pragma once

#include <optional>
#include <string>
#include <variant>

#include "shared/decode_result.hpp"
#include "shared/url.hpp"
#include "shared/widget_snapshot.hpp"
#include "shared/widget_snapshot_json.hpp"

// Locates, reads and writes the shared file "usage-snapshot.json". Stateless: every call looks
// again.
namespace korvo::WidgetSnapshotStore {

// The name of the shared file inside the group container.
inline constexpr const char* fileName = "usage-snapshot.json";
// Files larger than this are refused unread: no snapshot is anywhere near it.
inline constexpr long long maxFileBytes = 4 * 1024 * 1024;

// The shared file's location, or why there is none (no bundle information, no group, no
// container directory).
std::variant<Url, DecodeFailure> locate();

// The shared file's location; none when there is no container for the configured group.
std::optional<Url> fileURL();

// The snapshot in the file at `url`; none for every failure.
std::optional<WidgetSnapshot> load(const std::optional<Url>& url);

// The parts of the file at `url` that decode on their own (see decodeWidgetSnapshotParts); none
// when it cannot be read.
WidgetSnapshotParts loadParts(const std::optional<Url>& url);

// Like load, but says why there is no snapshot (missing file, not a regular file, too large,
// not JSON at byte N, missing key codex.isRefreshing, …).
Decoded<WidgetSnapshot> inspect(const std::optional<Url>& url);

// Writes the snapshot atomically (temporary file beside the target, flushed, renamed over it),
// creating missing directories (0700). False on any failure, which leaves no temporary file behind.
bool save(const WidgetSnapshot& snapshot, const std::optional<Url>& url);

}  // namespace korvo::WidgetSnapshotStore
