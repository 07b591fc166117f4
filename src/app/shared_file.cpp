#include "app/shared_file.hpp"

#include <stdexcept>

#include "shared/widget_snapshot_store.hpp"

namespace korvo::shared_file {

std::filesystem::path path() {
  auto location = WidgetSnapshotStore::locate();
  if (auto* failure = std::get_if<DecodeFailure>(&location)) {
    throw std::runtime_error("no place for the shared file: " + failure->reason);
  }
  return std::get<Url>(location).path;
}

}  // namespace korvo::shared_file
