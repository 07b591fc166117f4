#include "gtk/appearance.hpp"

#include <gtk/gtk.h>

#include "gtk/session_bus.hpp"

namespace korvo::gtk {
namespace {

constexpr const char* portalName = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* portalSettings = "org.freedesktop.portal.Settings";
constexpr const char* appearanceNamespace = "org.freedesktop.appearance";
constexpr const char* colorSchemeKey = "color-scheme";

// Relative luminance below which a background reads as dark.
constexpr double darkLuminance = 0.5;

double luminance(const ui::Color& color) {
  return 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
}

std::optional<ui::Color> lookupColor(GtkStyleContext* context, const char* name) {
  GdkRGBA rgba;
  if (!gtk_style_context_lookup_color(context, name, &rgba)) return std::nullopt;
  return ui::Color{rgba.red, rgba.green, rgba.blue, rgba.alpha};
}

void onSettingsChanged(GObject*, GParamSpec*, gpointer watch) {
  static_cast<AppearanceWatch*>(watch)->settingsChanged();
}

void onPortalRead(GObject* source, GAsyncResult* result, gpointer watch) {
  GError* error = nullptr;
  GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
  if (reply == nullptr) {
    // Cancelled means the watch is gone; any other failure means no portal: GTK alone decides.
    g_clear_error(&error);
    return;
  }
  GVariant* value = nullptr;
  g_variant_get(reply, "(v)", &value);
  static_cast<AppearanceWatch*>(watch)->setPortalValue(value);
  g_variant_unref(value);
  g_variant_unref(reply);
}

void onPortalSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                    GVariant* parameters, gpointer watch) {
  const char* space = nullptr;
  const char* key = nullptr;
  GVariant* value = nullptr;
  g_variant_get(parameters, "(&s&sv)", &space, &key, &value);
  if (g_strcmp0(space, appearanceNamespace) == 0 && g_strcmp0(key, colorSchemeKey) == 0) {
    static_cast<AppearanceWatch*>(watch)->setPortalValue(value);
  }
  g_variant_unref(value);
}

bool gtkPrefersDark() {
  GtkSettings* settings = gtk_settings_get_default();
  gboolean dark = FALSE;
  if (settings != nullptr)
    g_object_get(settings, "gtk-application-prefer-dark-theme", &dark, nullptr);
  return dark != FALSE;
}

}  // namespace

std::optional<ui::ColorScheme> schemeFromPortal(std::uint32_t colorScheme) {
  switch (colorScheme) {
    case 1:
      return ui::ColorScheme::dark;
    case 2:
      return ui::ColorScheme::light;
    default:
      return std::nullopt;
  }
}

ui::ColorScheme resolveScheme(std::optional<ui::ColorScheme> fixed,
                              std::optional<ui::ColorScheme> portal, bool gtkPrefersDark) {
  if (fixed) return *fixed;
  if (portal) return *portal;
  return gtkPrefersDark ? ui::ColorScheme::dark : ui::ColorScheme::light;
}

ui::Theme agreeingTheme(std::optional<ui::Color> background, std::optional<ui::Color> foreground,
                        ui::ColorScheme scheme) {
  if (!background || background->alpha < 1) return {};
  const bool darkBackground = luminance(*background) < darkLuminance;
  if (darkBackground != (scheme == ui::ColorScheme::dark)) return {};
  return {foreground, background};
}

std::optional<ui::ColorScheme> schemeOfBackground(std::optional<ui::Color> background) {
  if (!background || background->alpha < 1) return std::nullopt;
  return luminance(*background) < darkLuminance ? ui::ColorScheme::dark : ui::ColorScheme::light;
}

ThemeColors readThemeColors(GtkWidget* widget) {
  GtkStyleContext* context = gtk_widget_get_style_context(widget);
  return {lookupColor(context, "theme_bg_color"), lookupColor(context, "theme_fg_color")};
}

ui::Theme themeColors(GtkWidget* widget, ui::ColorScheme scheme) {
  const ThemeColors colors = readThemeColors(widget);
  return agreeingTheme(colors.background, colors.foreground, scheme);
}

AppearanceWatch::AppearanceWatch(std::optional<ui::ColorScheme> fixed,
                                 std::function<void()> changed)
    : fixed_(fixed), changed_(std::move(changed)) {
  if (fixed_) return;
  if (GtkSettings* settings = gtk_settings_get_default()) {
    settingsHandlers_[0] = g_signal_connect(settings, "notify::gtk-application-prefer-dark-theme",
                                            G_CALLBACK(onSettingsChanged), this);
    settingsHandlers_[1] =
        g_signal_connect(settings, "notify::gtk-theme-name", G_CALLBACK(onSettingsChanged), this);
  }
  GDBusConnection* bus = sessionBus();
  if (bus == nullptr) return;
  subscription_ = g_dbus_connection_signal_subscribe(
      bus, portalName, portalSettings, "SettingChanged", portalPath, appearanceNamespace,
      G_DBUS_SIGNAL_FLAGS_NONE, onPortalSignal, this, nullptr);
  cancellable_ = g_cancellable_new();
  g_dbus_connection_call(bus, portalName, portalPath, portalSettings, "Read",
                         g_variant_new("(ss)", appearanceNamespace, colorSchemeKey),
                         G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, -1,
                         G_CANCELLABLE(cancellable_), onPortalRead, this);
}

AppearanceWatch::~AppearanceWatch() {
  if (cancellable_ != nullptr) {
    g_cancellable_cancel(G_CANCELLABLE(cancellable_));
    g_object_unref(cancellable_);
  }
  if (subscription_ != 0) g_dbus_connection_signal_unsubscribe(sessionBus(), subscription_);
  if (GtkSettings* settings = gtk_settings_get_default()) {
    for (const auto handler : settingsHandlers_) {
      if (handler != 0) g_signal_handler_disconnect(settings, handler);
    }
  }
}

ui::ColorScheme AppearanceWatch::scheme() const {
  return resolveScheme(fixed_, portal_, gtkPrefersDark());
}

void AppearanceWatch::settingsChanged() {
  changed_();
}

void AppearanceWatch::setPortalValue(GVariant* value) {
  // Older portals wrap the value in one more variant.
  GVariant* inner = g_variant_ref(value);
  while (g_variant_is_of_type(inner, G_VARIANT_TYPE_VARIANT)) {
    GVariant* unwrapped = g_variant_get_variant(inner);
    g_variant_unref(inner);
    inner = unwrapped;
  }
  const auto scheme = g_variant_is_of_type(inner, G_VARIANT_TYPE_UINT32)
                          ? schemeFromPortal(g_variant_get_uint32(inner))
                          : std::nullopt;
  g_variant_unref(inner);
  if (scheme == portal_) return;
  portal_ = scheme;
  changed_();
}

}  // namespace korvo::gtk
