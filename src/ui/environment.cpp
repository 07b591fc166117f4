#include "ui/environment.hpp"

namespace korvo::ui {

namespace {

Color hex(const char* value) {
  return *Color::fromHex(value);
}

}  // namespace

Size familySize(WidgetFamily family) {
  switch (family) {
    case WidgetFamily::systemSmall:
      return {170, 170};
    case WidgetFamily::systemMedium:
      return {364, 170};
  }
  return {170, 170};
}

Palette Environment::palette() const {
  const bool dark = colorScheme == ColorScheme::dark;
  Palette palette;
  palette.teal = hex(dark ? "#6AC4DC" : "#59ADC4");
  palette.orange = hex(dark ? "#FF9F0A" : "#FF9500");
  palette.blue = hex(dark ? "#0A84FF" : "#007AFF");
  palette.red = hex(dark ? "#FF453A" : "#FF3B30");
  palette.primary = theme.primary.value_or(dark ? Color::white(0.85) : Color::black(0.85));
  palette.secondary = palette.primary.opacity(dark ? 0.55 : 0.5);
  palette.windowBackground = theme.windowBackground.value_or(hex(dark ? "#323232" : "#ECECEC"));
  palette.separator = palette.primary.opacity(dark ? 0.18 : 0.12);
  return palette;
}

}  // namespace korvo::ui
