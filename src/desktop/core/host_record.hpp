#pragma once

#include <sys/types.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

// Where the running desktop host leaves its process id for `korvo-widgets reload`, and how that
// record is read back. `reload` signals that process (SIGUSR2) instead of calling the host on
// the session bus: the command line then links no GIO, which keeps every invocation of it
// (status bars run `status` every few seconds) as light as it is without `reload`.
namespace korvo::HostRecord {

// The signal that asks the host to ask every provider again.
inline constexpr int reloadSignal = SIGUSR2;

// $XDG_RUNTIME_DIR/korvo-widgets/desktop.pid; none without an absolute XDG_RUNTIME_DIR.
std::optional<std::filesystem::path> path();

// Records this process as the session's desktop host; a message naming the file when it cannot.
std::optional<std::string> write();

// Removes the record when it still names this process (a host that took over keeps its own).
void erase();

// The desktop host the record names when it is alive and is a desktop host; otherwise why not,
// as one line.
std::variant<pid_t, std::string> runningHost();

}  // namespace korvo::HostRecord
