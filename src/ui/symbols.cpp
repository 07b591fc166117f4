#include "ui/symbols.hpp"

#include <array>
#include <utility>

namespace korvo::ui {

namespace {

// The one table from the symbol names the views use to the icon font's glyphs.
constexpr std::array<std::pair<std::string_view, std::string_view>, 5> ligatures{{
    {"memorychip", "memory"},
    {"thermometer.medium", "thermostat"},
    {"sparkles", "auto_awesome"},
    {"cup.and.saucer.fill", "coffee"},
    {"arrow.up.right", "north_east"},
}};

}  // namespace

std::string_view symbolLigature(std::string_view symbolName) {
  for (const auto& [name, ligature] : ligatures) {
    if (name == symbolName) return ligature;
  }
  return symbolName;
}

}  // namespace korvo::ui
