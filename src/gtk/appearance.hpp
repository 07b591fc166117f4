#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "ui/color.hpp"
#include "ui/environment.hpp"

using GtkWidget = struct _GtkWidget;
using GVariant = struct _GVariant;

namespace korvo::gtk {

// The desktop portal's org.freedesktop.appearance color-scheme: 1 prefers dark, 2 prefers light,
// anything else states no preference.
std::optional<ui::ColorScheme> schemeFromPortal(std::uint32_t colorScheme);

// A fixed choice wins, then the portal's stated preference, then GTK's prefer-dark setting.
ui::ColorScheme resolveScheme(std::optional<ui::ColorScheme> fixed,
                              std::optional<ui::ColorScheme> portal, bool gtkPrefersDark);

// The theme's background and text colours, kept only when the background's lightness agrees with
// `scheme` (a light GTK theme says nothing about a dark card).
ui::Theme agreeingTheme(std::optional<ui::Color> background, std::optional<ui::Color> foreground,
                        ui::ColorScheme scheme);

// The scheme a window of that background reads as: dark below half luminance; none when the
// colour is unknown or not opaque.
std::optional<ui::ColorScheme> schemeOfBackground(std::optional<ui::Color> background);

// The two colours of a GTK theme the cards take.
struct ThemeColors {
  std::optional<ui::Color> background;  // theme_bg_color
  std::optional<ui::Color> foreground;  // theme_fg_color
  friend bool operator==(const ThemeColors&, const ThemeColors&) = default;
};

// The colours as the widget's style context defines them.
ThemeColors readThemeColors(GtkWidget* widget);

// theme_bg_color and theme_fg_color from the widget's style context, as agreeingTheme keeps them.
ui::Theme themeColors(GtkWidget* widget, ui::ColorScheme scheme);

// Follows the desktop's light/dark preference live: GTK's gtk-application-prefer-dark-theme
// and the portal's color-scheme (read once, then its SettingChanged signal). `changed` runs on
// the main loop whenever the resolved scheme or the GTK theme changes.
class AppearanceWatch {
 public:
  AppearanceWatch(std::optional<ui::ColorScheme> fixed, std::function<void()> changed);
  ~AppearanceWatch();
  AppearanceWatch(const AppearanceWatch&) = delete;
  AppearanceWatch& operator=(const AppearanceWatch&) = delete;

  ui::ColorScheme scheme() const;

  // Called from the GLib callbacks: GTK's setting changed; the portal reported its value.
  void settingsChanged();
  void setPortalValue(GVariant* value);

 private:
  std::optional<ui::ColorScheme> fixed_;
  std::function<void()> changed_;
  std::optional<ui::ColorScheme> portal_;
  unsigned subscription_ = 0;
  unsigned long settingsHandlers_[2] = {0, 0};
  void* cancellable_ = nullptr;
};

}  // namespace korvo::gtk
