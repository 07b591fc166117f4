#include "app/login_offer.hpp"

#include <fstream>
#include <stdexcept>
#include <system_error>

#include "base/display_text.hpp"
#include "sources/user_paths.hpp"

namespace korvo::login_offer {

namespace fs = std::filesystem;

std::optional<fs::path> markLocation() {
  if (auto state = absolutePathFromEnvironment("XDG_STATE_HOME")) {
    return *state / "korvo" / "login-offered";
  }
  if (auto home = homeDirectory()) return *home / ".local" / "state" / "korvo" / "login-offered";
  return std::nullopt;
}

bool due(const start_at_login::Places& places, const fs::path& home, const fs::path& mark) {
  std::error_code error;
  if (fs::exists(fs::symlink_status(mark, error))) return false;
  const fs::path inside = places.programs.lexically_normal().lexically_relative(home);
  if (inside.empty() || inside == "." || *inside.begin() == "..") return false;
  try {
    return !start_at_login::enabled(places);
  } catch (const std::exception&) {
    return false;
  }
}

void markAnswered(const fs::path& mark) {
  std::error_code error;
  fs::create_directories(mark.parent_path(), error);
  std::ofstream file(mark, std::ios::trunc);
  if (!file) throw std::runtime_error("cannot write " + displayText(mark.string()));
}

}  // namespace korvo::login_offer
