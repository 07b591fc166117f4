#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ui/environment.hpp"

// The words for the environment's values, each vocabulary written once: command lines, placements
// files, dumps and the JSON tree all read and write them from here.
namespace korvo::ui {

template <class Value>
struct Word {
  std::string_view word;
  Value value;
};

// "small" / "medium", as command lines and placements write families.
inline constexpr std::array<Word<WidgetFamily>, 2> familyWords{
    {{"small", WidgetFamily::systemSmall}, {"medium", WidgetFamily::systemMedium}}};
// "systemSmall" / "systemMedium", the platform's names, as the JSON tree writes families.
inline constexpr std::array<Word<WidgetFamily>, 2> familyNames{
    {{"systemSmall", WidgetFamily::systemSmall}, {"systemMedium", WidgetFamily::systemMedium}}};
inline constexpr std::array<Word<ColorScheme>, 2> colorSchemeWords{
    {{"light", ColorScheme::light}, {"dark", ColorScheme::dark}}};
inline constexpr std::array<Word<RenderingMode>, 2> renderingModeWords{
    {{"full-color", RenderingMode::fullColor}, {"accented", RenderingMode::accented}}};

// The word for `value` in `words` (empty when the table lacks it).
template <class Value>
constexpr std::string_view wordFor(std::span<const Word<Value>> words, Value value) {
  for (const auto& entry : words) {
    if (entry.value == value) return entry.word;
  }
  return {};
}

// The value `word` names in `words`; none for any other text.
template <class Value>
constexpr std::optional<Value> valueNamed(std::span<const Word<Value>> words,
                                          std::string_view word) {
  for (const auto& entry : words) {
    if (entry.word == word) return entry.value;
  }
  return std::nullopt;
}

// "small, medium": every word of `words`, in order, for messages.
template <class Value>
std::string wordList(std::span<const Word<Value>> words) {
  std::string list;
  for (const auto& entry : words) {
    if (!list.empty()) list += ", ";
    list += entry.word;
  }
  return list;
}

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
