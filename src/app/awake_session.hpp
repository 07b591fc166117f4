#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/agent_hold.hpp"
#include "app/awake_duration.hpp"
#include "base/date.hpp"
#include "shared/decode_result.hpp"

namespace korvo {

// A running Keep Awake session: it ends at `endsAt`, or runs until stopped.
struct AwakeSession {
  std::optional<Date> endsAt;  // none: indefinitely

  friend bool operator==(const AwakeSession&, const AwakeSession&) = default;
};

// A session started at `now` for `duration`.
AwakeSession startedSession(Date now, AwakeDuration duration);

// `current` with `duration` added to its end; a new session from `now` when none runs (or its end
// has passed). Extending indefinitely, or an indefinite session, gives an indefinite one.
AwakeSession extendedSession(const std::optional<AwakeSession>& current, Date now,
                             AwakeDuration duration);

// Whether `session` still runs at `now` (an indefinite one always does).
bool runsAt(const AwakeSession& session, Date now);

// awake.json: {"endsAt": date or null, "indefinite": bool}.
std::string awakeStateDocument(const AwakeSession& session);
// Reads awake.json; names the fault otherwise (a finite session needs a numeric endsAt).
Decoded<AwakeSession> parseAwakeState(std::string_view json);

// Which inhibitor a session holds, by its word in `status --json`.
enum class Inhibitor { logind, session };
std::string_view inhibitorWord(Inhibitor inhibitor);

// What keeps the machine awake: a session while one runs (it was asked for), else the agents.
enum class AwakeReason { session, agents };
std::optional<AwakeReason> awakeReason(const std::optional<AwakeSession>& session,
                                       const std::optional<AgentHold>& hold);

// When the machine may sleep again unless something changes: the later of the session's end and
// the agents' hold; none while nothing holds it or an indefinite session runs.
std::optional<Date> awakeUntil(const std::optional<AwakeSession>& session,
                               const std::optional<AgentHold>& hold);

// `korvo awake status --json`: {"active", "endsAt" (date or null), "endsAtISO", "indefinite",
// "inhibitors", "reason" ("session", "agents" or null), "agents" (their names)}.
nlohmann::ordered_json awakeStatusDocument(const std::optional<AwakeSession>& session,
                                           const std::optional<AgentHold>& hold,
                                           const std::vector<Inhibitor>& held);

}  // namespace korvo
