#pragma once

#include <functional>

#include "gtk/appearance.hpp"

namespace korvo::gtk {

// The desktop theme's colours for the host's cards, read by the theme helper (theme_helper.hpp)
// before the first card and again whenever GTK's theme settings change.
class ThemeProbe {
 public:
  // Reads the colours before it returns; `changed` runs when a later reading differs.
  explicit ThemeProbe(std::function<void()> changed);
  ~ThemeProbe();
  ThemeProbe(const ThemeProbe&) = delete;
  ThemeProbe& operator=(const ThemeProbe&) = delete;

  // The colours, as agreeingTheme keeps them for `scheme`.
  ui::Theme theme(ui::ColorScheme scheme) const;

  // Called from the GLib callbacks: a theme setting changed; the reading it asked for is due.
  void settingChanged();
  void read();

 private:
  std::function<void()> changed_;
  ThemeColors colors_;
  unsigned pendingRead_ = 0;
};

}  // namespace korvo::gtk
