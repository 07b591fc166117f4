#include "ui/words.hpp"

namespace korvo::ui {

std::string_view familyWord(WidgetFamily family) {
  return wordFor<WidgetFamily>(familyWords, family);
}

std::string_view familyName(WidgetFamily family) {
  return wordFor<WidgetFamily>(familyNames, family);
}

std::string_view colorSchemeWord(ColorScheme scheme) {
  return wordFor<ColorScheme>(colorSchemeWords, scheme);
}

std::string familyList(std::span<const WidgetFamily> families) {
  std::string list;
  for (const WidgetFamily family : families) {
    if (!list.empty()) list += ", ";
    list += familyWord(family);
  }
  return list;
}

std::optional<WidgetFamily> familyNamed(std::string_view text) {
  if (const auto family = valueNamed<WidgetFamily>(familyWords, text)) return family;
  return valueNamed<WidgetFamily>(familyNames, text);
}

}  // namespace korvo::ui
