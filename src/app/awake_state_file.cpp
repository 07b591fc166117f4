#include "app/awake_state_file.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"
#include "shared/file_bytes.hpp"
#include "sources/user_paths.hpp"

namespace korvo::awake_state_file {
namespace {

// The file holds one short object; anything larger is not korvo's.
constexpr std::size_t maxBytes = std::size_t{64} * 1024;

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto state = absolutePathFromEnvironment("XDG_STATE_HOME")) {
    return *state / "korvo" / "awake.json";
  }
  if (auto home = homeDirectory()) return *home / ".local" / "state" / "korvo" / "awake.json";
  return std::nullopt;
}

std::optional<AwakeSession> load(std::ostream& warnings) {
  const auto path = location();
  std::error_code error;
  if (!path || !std::filesystem::exists(std::filesystem::symlink_status(*path, error))) {
    return std::nullopt;
  }
  auto bytes = readRegularFile(*path, maxBytes);
  if (auto* failure = std::get_if<DecodeFailure>(&bytes)) {
    warnings << "korvo: Keep Awake state " << displayText(path->string()) << ": " << failure->reason
             << "; no session resumed\n";
    return std::nullopt;
  }
  auto session = parseAwakeState(std::get<std::string>(bytes));
  if (auto* failure = std::get_if<DecodeFailure>(&session)) {
    warnings << "korvo: Keep Awake state " << displayText(path->string()) << ": " << failure->reason
             << "; no session resumed\n";
    return std::nullopt;
  }
  return std::get<AwakeSession>(session);
}

void save(const std::optional<AwakeSession>& session) {
  const auto path = location();
  if (!path)
    throw std::runtime_error("no place for the Keep Awake state: set HOME or XDG_STATE_HOME");
  if (!session) {
    // unlink, not remove: a directory standing there is not korvo's to delete.
    if (::unlink(path->c_str()) != 0 && errno != ENOENT) {
      throw std::runtime_error("cannot remove " + displayText(path->string()) + ": " +
                               std::strerror(errno));
    }
    return;
  }
  if (!createPrivateDirectories(path->parent_path()) ||
      !replaceFileAtomically(*path, awakeStateDocument(*session), 0600)) {
    throw std::runtime_error("cannot write the Keep Awake state " + displayText(path->string()) +
                             ": " + std::strerror(errno));
  }
}

}  // namespace korvo::awake_state_file
