#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/words.hpp"
#include "ui/environment.hpp"

// The words for the environment's values, each vocabulary written once: command lines, placements
// files, dumps and the JSON tree all read and write them from here.
namespace korvo::ui {

// "small" / "medium", as command lines and placements write families.
inline constexpr Words<WidgetFamily, 2> familyWords{
    {{"small", WidgetFamily::systemSmall}, {"medium", WidgetFamily::systemMedium}}};
// "systemSmall" / "systemMedium", the platform's names, as the JSON tree writes families.
inline constexpr Words<WidgetFamily, 2> familyNames{
    {{"systemSmall", WidgetFamily::systemSmall}, {"systemMedium", WidgetFamily::systemMedium}}};
inline constexpr Words<ColorScheme, 2> colorSchemeWords{
    {{"light", ColorScheme::light}, {"dark", ColorScheme::dark}}};
inline constexpr Words<RenderingMode, 2> renderingModeWords{
    {{"full-color", RenderingMode::fullColor}, {"accented", RenderingMode::accented}}};

// "small" / "medium".
std::string_view familyWord(WidgetFamily family);
// "systemSmall" / "systemMedium".
std::string_view familyName(WidgetFamily family);
// "light" / "dark".
std::string_view colorSchemeWord(ColorScheme scheme);
// "small, medium": the families' words in order, for messages.
std::string familyList(std::span<const WidgetFamily> families);
// A family by its word or its platform name ("small", "systemSmall"); none for anything else.
std::optional<WidgetFamily> familyNamed(std::string_view text);

}  // namespace korvo::ui
