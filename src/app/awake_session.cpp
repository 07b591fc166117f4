#include "app/awake_session.hpp"

#include <cmath>

#include "shared/json_reader.hpp"

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

nlohmann::ordered_json awakeStatusDocument(const std::optional<AwakeSession>& session,
                                           const std::vector<Inhibitor>& held) {
  nlohmann::ordered_json document;
  document["active"] = session.has_value();
  document["endsAt"] = session && session->endsAt
                           ? nlohmann::ordered_json(session->endsAt->secondsSinceReferenceDate)
                           : nlohmann::ordered_json(nullptr);
  document["indefinite"] = session && !session->endsAt;
  document["inhibitors"] = nlohmann::ordered_json::array();
  for (const Inhibitor inhibitor : held) {
    document["inhibitors"].push_back(std::string(inhibitorWord(inhibitor)));
  }
  return document;
}

}  // namespace korvo
