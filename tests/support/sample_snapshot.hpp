#pragma once

#include <filesystem>

namespace korvo::testing_support {

// The example shared file the sources ship (data/samples), for suites that define
// KORVO_SOURCE_DIR.
inline std::filesystem::path exampleSnapshotPath() {
  return std::filesystem::path(KORVO_SOURCE_DIR) / "data" / "samples" / "usage-snapshot.json";
}

}  // namespace korvo::testing_support
