#include "gtk/theme_probe.hpp"

#include <gtk/gtk.h>

#include "gtk/theme_helper.hpp"

namespace korvo::gtk {
namespace {

void onThemeSettingChanged(GObject*, GParamSpec*, gpointer probe) {
  static_cast<ThemeProbe*>(probe)->settingChanged();
}

gboolean onReadDue(gpointer probe) {
  static_cast<ThemeProbe*>(probe)->read();
  return G_SOURCE_REMOVE;
}

}  // namespace

ThemeProbe::ThemeProbe(std::function<void()> changed) : changed_(std::move(changed)) {
  if (GtkSettings* settings = gtk_settings_get_default()) {
    // The settings that pick the theme and its variant; the host's own theme stays bare.
    for (const char* signal :
         {"notify::gtk-theme-name", "notify::gtk-application-prefer-dark-theme"}) {
      g_signal_connect(settings, signal, G_CALLBACK(onThemeSettingChanged), this);
    }
  }
  colors_ = runThemeHelper().value_or(ThemeColors{});
}

ThemeProbe::~ThemeProbe() {
  if (GtkSettings* settings = gtk_settings_get_default()) {
    g_signal_handlers_disconnect_by_data(settings, this);
  }
  if (pendingRead_ != 0) g_source_remove(pendingRead_);
}

ui::Theme ThemeProbe::theme(ui::ColorScheme scheme) const {
  return agreeingTheme(colors_.background, colors_.foreground, scheme);
}

void ThemeProbe::settingChanged() {
  // A switch of theme usually changes both settings at once: one reading answers both. It holds
  // the main loop for the helper's run (tens of milliseconds), which only a theme switch costs.
  if (pendingRead_ == 0) pendingRead_ = g_idle_add(onReadDue, this);
}

void ThemeProbe::read() {
  pendingRead_ = 0;
  // A failed reading keeps the colours the cards have.
  const std::optional<ThemeColors> colors = runThemeHelper();
  if (!colors || *colors == colors_) return;
  colors_ = *colors;
  changed_();
}

}  // namespace korvo::gtk
