#include "desktop/core/placement_file.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "shared/atomic_file.hpp"

namespace korvo::desktop {
namespace {

// A placements file is a few hundred bytes; anything far larger is not one.
constexpr std::uintmax_t largestPlacementsFile = 1 << 20;

}  // namespace

std::optional<std::filesystem::path> placementsPath(const char* xdgConfigHome, const char* home) {
  std::filesystem::path base;
  if (xdgConfigHome != nullptr && std::filesystem::path(xdgConfigHome).is_absolute()) {
    base = xdgConfigHome;
  } else if (home != nullptr && std::filesystem::path(home).is_absolute()) {
    base = std::filesystem::path(home) / ".config";
  } else {
    return std::nullopt;
  }
  return base / "korvo-widgets" / "placements.json";
}

std::optional<std::string> savePlacementsFile(const std::filesystem::path& file,
                                              const std::vector<Placement>& placements) {
  if (!createPrivateDirectories(file.parent_path()) ||
      !replaceFileAtomically(file, placementsText(placements))) {
    return "cannot write " + file.string() + ": " + std::strerror(errno);
  }
  return std::nullopt;
}

std::optional<FileStamp> fileStamp(const std::filesystem::path& file) {
  std::error_code error;
  FileStamp stamp{std::filesystem::last_write_time(file, error), 0};
  if (error) return std::nullopt;
  stamp.size = std::filesystem::file_size(file, error);
  if (error) return std::nullopt;
  return stamp;
}

std::variant<std::vector<Placement>, NoPlacementsFile, PlacementError> loadPlacementsFile(
    const std::filesystem::path& file, const KindLookup& lookup) {
  const std::string name = file.string();
  std::error_code status;
  const auto type = std::filesystem::status(file, status).type();
  if (type == std::filesystem::file_type::not_found) return NoPlacementsFile{};
  if (status) return PlacementError{name + ": " + status.message()};
  if (type != std::filesystem::file_type::regular) {
    return PlacementError{name + ": not a regular file"};
  }
  if (std::filesystem::file_size(file, status) > largestPlacementsFile || status) {
    return PlacementError{name + ": too large for a placements file"};
  }
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return PlacementError{name + ": " + std::strerror(errno)};
  std::ostringstream text;
  text << stream.rdbuf();
  auto result = parsePlacements(text.str(), lookup);
  if (auto* failure = std::get_if<PlacementError>(&result)) {
    return PlacementError{name + ": " + failure->message};
  }
  return std::get<std::vector<Placement>>(std::move(result));
}

}  // namespace korvo::desktop
