#include "ui/words.hpp"

namespace korvo::ui {

std::string_view familyWord(WidgetFamily family) {
  return wordFor(familyWords, family);
}

std::string_view familyName(WidgetFamily family) {
  return wordFor(familyNames, family);
}

std::string_view colorSchemeWord(ColorScheme scheme) {
  return wordFor(colorSchemeWords, scheme);
}

std::string familyList(std::span<const WidgetFamily> families) {
  return joined(families, ", ", familyWord);
}

std::optional<WidgetFamily> familyNamed(std::string_view text) {
  if (const auto family = valueNamed(familyWords, text)) return family;
  return valueNamed(familyNames, text);
}

}  // namespace korvo::ui
