#include "app/user_file.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"

namespace korvo::user_file {
namespace {

// The kernel's own limit on links followed in one lookup.
constexpr int maxLinks = 40;

// Where the symbolic links from `path` lead; none when they go round in a loop.
std::optional<std::filesystem::path> target(std::filesystem::path path) {
  for (int hop = 0; hop <= maxLinks; ++hop) {
    std::error_code error;
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error))) return path;
    const auto link = std::filesystem::read_symlink(path, error);
    if (error) return path;
    path = link.is_absolute() ? link : path.parent_path() / link;
  }
  return std::nullopt;
}

// Writable by this user, and not made read-only for everyone (which root alone would ignore).
bool writable(const std::filesystem::path& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 && (status.st_mode & 0222) != 0 &&
         ::access(file.c_str(), W_OK) == 0;
}

}  // namespace

std::optional<std::string> refusal(const std::filesystem::path& path) {
  const auto file = target(path);
  if (!file) return "its symbolic links go round in a loop";
  // A rename in a writable folder would replace it anyway, so its permissions are asked here.
  if (::access(file->c_str(), F_OK) == 0 && !writable(*file)) return "it is read-only";
  return std::nullopt;
}

std::optional<std::string> replace(const std::filesystem::path& path, std::string_view bytes,
                                   mode_t mode) {
  if (auto refused = refusal(path)) return refused;
  const auto file = target(path);
  struct stat status {};
  if (::stat(file->c_str(), &status) == 0) mode = status.st_mode & 07777;
  if (!replaceFileAtomically(*file, bytes, mode)) {
    return "cannot write " + displayText(file->string()) + ": " + std::strerror(errno);
  }
  return std::nullopt;
}

}  // namespace korvo::user_file
