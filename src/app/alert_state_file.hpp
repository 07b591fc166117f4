#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

#include "app/usage_alerts.hpp"
#include "shared/decode_result.hpp"

// The notices already given, in $XDG_STATE_HOME/korvo/alerts.json, so that a restarted service
// does not give them again.
namespace korvo::alert_state_file {

std::optional<std::filesystem::path> location();

// {"given": [{"metric", "resetsAt" (Unix seconds or null), "percent"}], "hot"}.
std::string document(const usage_alerts::Memory& memory);
Decoded<usage_alerts::Memory> parse(std::string_view json);

// What the file holds; nothing given when there is no file. A file that cannot be used is named
// with its fault on one line in `warnings`, and counts as nothing given.
usage_alerts::Memory load(std::ostream& warnings);

// Keeps `memory` atomically; false when it cannot.
bool save(const usage_alerts::Memory& memory);

}  // namespace korvo::alert_state_file
