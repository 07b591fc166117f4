#pragma once

#include <filesystem>
#include <optional>
#include <variant>

#include "desktop/core/placement.hpp"

namespace korvo::desktop {

// $XDG_CONFIG_HOME/korvo-widgets/placements.json, or ~/.config/… when XDG_CONFIG_HOME is unset
// or relative (as the XDG rules say); nothing when neither gives an absolute path.
std::optional<std::filesystem::path> placementsPath(const char* xdgConfigHome, const char* home);

// Tells one version of a file from the next.
struct FileStamp {
  std::filesystem::file_time_type modified{};
  std::uintmax_t size = 0;  // bytes
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// The file's stamp; nothing when it cannot be read.
std::optional<FileStamp> fileStamp(const std::filesystem::path& file);

// Writes `placements` to `file` in one step (a reader sees the old file or the new one), making
// its folder when missing; a message naming the file when it cannot.
std::optional<std::string> savePlacementsFile(const std::filesystem::path& file,
                                              const std::vector<Placement>& placements);

// The file does not exist: the defaults apply.
struct NoPlacementsFile {};

// Reads and checks the placements file. An error message names the file and the key.
std::variant<std::vector<Placement>, NoPlacementsFile, PlacementError> loadPlacementsFile(
    const std::filesystem::path& file, const KindLookup& lookup);

}  // namespace korvo::desktop
