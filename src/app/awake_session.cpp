#include "app/awake_session.hpp"

#include <cmath>

#include "shared/json_reader.hpp"
#include "shared/moment_text.hpp"

namespace korvo {

AwakeSession startedSession(Date now, AwakeDuration duration) {
  if (!duration.seconds) return {};
  return {now.addingSeconds(static_cast<double>(*duration.seconds))};
}

AwakeSession extendedSession(const std::optional<AwakeSession>& current, Date now,
                             AwakeDuration duration) {
  if (!current || !runsAt(*current, now)) return startedSession(now, duration);
  if (!current->endsAt || !duration.seconds) return {};
  return {current->endsAt->addingSeconds(static_cast<double>(*duration.seconds))};
}

bool runsAt(const AwakeSession& session, Date now) {
  return !session.endsAt || *session.endsAt > now;
}

std::string awakeStateDocument(const AwakeSession& session) {
  nlohmann::ordered_json document;
  document["endsAt"] = session.endsAt
                           ? nlohmann::ordered_json(session.endsAt->secondsSinceReferenceDate)
                           : nlohmann::ordered_json(nullptr);
  document["indefinite"] = !session.endsAt;
  return document.dump() + "\n";
}

Decoded<AwakeSession> parseAwakeState(std::string_view json) {
  auto parsed = json_reader::parse(json);
  if (auto* failure = std::get_if<DecodeFailure>(&parsed)) return *failure;
  const auto& root = std::get<nlohmann::json>(parsed);
  try {
    json_reader::expectObject(root, "");
    const auto* indefinite = json_reader::optional(root, "indefinite");
    if (indefinite == nullptr) throw json_reader::Failure{"indefinite is missing"};
    if (json_reader::readBoolean(*indefinite, "indefinite")) return AwakeSession{};
    const auto* endsAt = json_reader::optional(root, "endsAt");
    if (endsAt == nullptr) throw json_reader::Failure{"endsAt is missing"};
    const double seconds = json_reader::readNumber(*endsAt, "endsAt");
    if (!std::isfinite(seconds)) throw json_reader::Failure{"endsAt is not a finite number"};
    return AwakeSession{Date{seconds}};
  } catch (const json_reader::Failure& failure) {
    return DecodeFailure{failure.reason};
  }
}

std::string_view inhibitorWord(Inhibitor inhibitor) {
  return inhibitor == Inhibitor::logind ? "logind" : "session";
}

std::optional<AwakeReason> awakeReason(const std::optional<AwakeSession>& session,
                                       const std::optional<AgentHold>& hold) {
  if (session) return AwakeReason::session;
  if (hold) return AwakeReason::agents;
  return std::nullopt;
}

std::optional<Date> awakeUntil(const std::optional<AwakeSession>& session,
                               const std::optional<AgentHold>& hold) {
  if (session && !session->endsAt) return std::nullopt;
  if (session && hold) return std::max(*session->endsAt, hold->until);
  if (session) return session->endsAt;
  if (hold) return hold->until;
  return std::nullopt;
}

nlohmann::ordered_json awakeStatusDocument(const std::optional<AwakeSession>& session,
                                           const std::optional<AgentHold>& hold,
                                           const std::vector<Inhibitor>& held) {
  using Json = nlohmann::ordered_json;
  const auto reason = awakeReason(session, hold);
  const auto until = awakeUntil(session, hold);
  Json document;
  document["active"] = reason.has_value();
  document["endsAt"] = until ? Json(until->secondsSinceReferenceDate) : Json(nullptr);
  document["endsAtISO"] = until ? Json(isoMoment(*until)) : Json(nullptr);
  document["indefinite"] = session && !session->endsAt;
  document["inhibitors"] = Json::array();
  for (const Inhibitor inhibitor : held) {
    document["inhibitors"].push_back(std::string(inhibitorWord(inhibitor)));
  }
  document["reason"] = !reason                           ? Json(nullptr)
                       : *reason == AwakeReason::session ? Json("session")
                                                         : Json("agents");
  document["agents"] = Json::array();
  if (hold) {
    for (const Agent agent : hold->agents)
      document["agents"].push_back(std::string(agentName(agent)));
  }
  return document;
}

}  // namespace korvo
