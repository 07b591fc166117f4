#pragma once

#include <filesystem>
#include <optional>

#include "app/start_at_login.hpp"

// A home install (`--prefix ~/.local`) installs no autostart entry, so nothing starts it at login
// until the user says so: its first dashboard offers "Start at login" once.
namespace korvo::login_offer {

// The mark that the offer was answered: $XDG_STATE_HOME/korvo/login-offered (default
// ~/.local/state/…); nothing without HOME or XDG_STATE_HOME.
std::optional<std::filesystem::path> markLocation();

// Whether to offer it: korvo runs from a folder inside `home`, does not start at login yet and was
// not offered it before. Folders that cannot be read count as no offer.
bool due(const start_at_login::Places& places, const std::filesystem::path& home,
         const std::filesystem::path& mark);

// Remembers that the offer was answered, either way. Throws std::runtime_error with one line
// naming the file that could not be written.
void markAnswered(const std::filesystem::path& mark);

}  // namespace korvo::login_offer
