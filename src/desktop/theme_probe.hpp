#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "desktop/appearance.hpp"

using GCancellable = struct _GCancellable;

namespace korvo::desktop {

// The desktop theme's colours for a host that runs GTK with the bare theme (bare_theme.hpp): a
// short-lived helper, `korvo-widgets-desktop --theme-colors` in the user's own environment,
// reads them from the real theme and prints them.

// "background R G B A" and "foreground R G B A" lines, each channel an exact hexadecimal float.
std::string formatThemeColors(const ThemeColors& colors);
// The colours of the lines that read as such; anything else is left out.
ThemeColors parseThemeColors(std::string_view text);

// The helper: opens the display with the user's theme and prints its colours. An exit code.
int printThemeColors();

class ThemeProbe {
 public:
  // Reads the colours before it returns, and again whenever GTK's theme settings change;
  // `changed` runs when a later reading differs.
  explicit ThemeProbe(std::function<void()> changed);
  ~ThemeProbe();
  ThemeProbe(const ThemeProbe&) = delete;
  ThemeProbe& operator=(const ThemeProbe&) = delete;

  // The colours, as agreeingTheme keeps them for `scheme`.
  ui::Theme theme(ui::ColorScheme scheme) const;
  // Called from the GLib callbacks: a theme setting changed (read again without waiting; a
  // reading under way is dropped); the helper printed `output`.
  void reread();
  void received(std::string_view output);

 private:
  std::function<void()> changed_;
  ThemeColors colors_;
  GCancellable* cancellable_ = nullptr;
};

}  // namespace korvo::desktop
