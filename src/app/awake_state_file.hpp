#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>

#include "app/awake_session.hpp"

namespace korvo::awake_state_file {

// $XDG_STATE_HOME/korvo/awake.json (an absolute XDG_STATE_HOME), else
// $HOME/.local/state/korvo/awake.json; none when neither gives an absolute path.
std::optional<std::filesystem::path> location();

// The session kept in the file; none without one. A file that cannot be used is left as it is
// and named with its fault on one line in `warnings`.
std::optional<AwakeSession> load(std::ostream& warnings);

// Keeps `session` (atomically), or removes the file for none. Throws std::runtime_error with a
// one-line message when it cannot.
void save(const std::optional<AwakeSession>& session);

}  // namespace korvo::awake_state_file
