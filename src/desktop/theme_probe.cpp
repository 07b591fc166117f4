#include "desktop/theme_probe.hpp"

#include <gdk/gdkwayland.h>
#include <gdk/gdkx.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "desktop/bare_theme.hpp"

namespace korvo::desktop {
namespace {

constexpr std::string_view backgroundLine = "background";
constexpr std::string_view foregroundLine = "foreground";

void appendColor(std::string& text, std::string_view name, const std::optional<ui::Color>& color) {
  if (!color) return;
  text += name;
  for (const double channel : {color->red, color->green, color->blue, color->alpha}) {
    std::array<char, 32> buffer{};
    // Hexadecimal floats read back to the same double.
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), channel,
                                       std::chars_format::hex);
    text += ' ';
    text.append(buffer.data(), written.ptr);
  }
  text += '\n';
}

std::optional<ui::Color> colorFrom(std::string_view fields) {
  std::array<double, 4> channels{};
  const char* at = fields.data();
  const char* end = fields.data() + fields.size();
  for (double& channel : channels) {
    if (at == end || *at != ' ') return std::nullopt;
    const auto read = std::from_chars(at + 1, end, channel, std::chars_format::hex);
    if (read.ec != std::errc{}) return std::nullopt;
    at = read.ptr;
  }
  if (at != end) return std::nullopt;
  return ui::Color{channels[0], channels[1], channels[2], channels[3]};
}

std::string helperPath() {
  // The file itself rather than /proc/self/exe, which names the interpreter under a profiler.
  char* path = g_file_read_link("/proc/self/exe", nullptr);
  std::string result = path != nullptr ? path : "/proc/self/exe";
  g_free(path);
  return result;
}

GSubprocess* startHelper() {
  GSubprocessLauncher* launcher = g_subprocess_launcher_new(static_cast<GSubprocessFlags>(
      G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_SILENCE));
  char** environment = usersEnvironment();
  // The helper shows nothing, so it need not join the accessibility bus.
  environment = g_environ_setenv(environment, "NO_AT_BRIDGE", "1", TRUE);
  // The settings that choose the theme come with the display: the helper opens the same kind.
  GdkDisplay* display = gdk_display_get_default();
  if (display != nullptr && GDK_IS_X11_DISPLAY(display)) {
    environment = g_environ_setenv(environment, "GDK_BACKEND", "x11", TRUE);
  } else if (display != nullptr && GDK_IS_WAYLAND_DISPLAY(display)) {
    environment = g_environ_setenv(environment, "GDK_BACKEND", "wayland", TRUE);
  }
  g_subprocess_launcher_set_environ(launcher, environment);
  g_strfreev(environment);
  GError* error = nullptr;
  const std::string path = helperPath();
  GSubprocess* helper =
      g_subprocess_launcher_spawn(launcher, &error, path.c_str(), "--theme-colors", nullptr);
  g_object_unref(launcher);
  if (helper == nullptr) {
    std::fprintf(stderr, "korvo-widgets: cannot read the desktop theme's colours: %s\n",
                 error->message);
    g_error_free(error);
  }
  return helper;
}

void onHelperDone(GObject* source, GAsyncResult* result, gpointer probe) {
  char* output = nullptr;
  GError* error = nullptr;
  if (!g_subprocess_communicate_utf8_finish(G_SUBPROCESS(source), result, &output, nullptr,
                                            &error)) {
    // Cancelled means the probe is gone or reading again; a helper that failed reads as no theme.
    const bool cancelled = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    g_error_free(error);
    if (!cancelled) static_cast<ThemeProbe*>(probe)->received("");
    return;
  }
  static_cast<ThemeProbe*>(probe)->received(output != nullptr ? output : "");
  g_free(output);
}

void onThemeSettingChanged(GObject*, GParamSpec*, gpointer probe) {
  static_cast<ThemeProbe*>(probe)->reread();
}

}  // namespace

std::string formatThemeColors(const ThemeColors& colors) {
  std::string text;
  appendColor(text, backgroundLine, colors.background);
  appendColor(text, foregroundLine, colors.foreground);
  return text;
}

ThemeColors parseThemeColors(std::string_view text) {
  ThemeColors colors;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with(backgroundLine)) {
      colors.background = colorFrom(line.substr(backgroundLine.size()));
    } else if (line.starts_with(foregroundLine)) {
      colors.foreground = colorFrom(line.substr(foregroundLine.size()));
    }
  }
  return colors;
}

int printThemeColors() {
  if (!gtk_init_check(nullptr, nullptr)) {
    std::fprintf(stderr, "korvo-widgets: cannot open the display to read the theme's colours\n");
    return 1;
  }
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  std::fputs(formatThemeColors(readThemeColors(window)).c_str(), stdout);
  gtk_widget_destroy(window);
  return std::fflush(stdout) == 0 ? 0 : 1;
}

ThemeProbe::ThemeProbe(std::function<void()> changed) : changed_(std::move(changed)) {
  if (GtkSettings* settings = gtk_settings_get_default()) {
    // The settings that pick the theme and its variant; the host's own theme stays bare.
    for (const char* signal :
         {"notify::gtk-theme-name", "notify::gtk-application-prefer-dark-theme"}) {
      g_signal_connect(settings, signal, G_CALLBACK(onThemeSettingChanged), this);
    }
  }
  GSubprocess* helper = startHelper();
  if (helper == nullptr) return;
  char* output = nullptr;
  if (g_subprocess_communicate_utf8(helper, nullptr, nullptr, &output, nullptr, nullptr)) {
    colors_ = parseThemeColors(output != nullptr ? output : "");
  }
  g_free(output);
  g_object_unref(helper);
}

ThemeProbe::~ThemeProbe() {
  if (GtkSettings* settings = gtk_settings_get_default()) {
    g_signal_handlers_disconnect_by_data(settings, this);
  }
  if (cancellable_ == nullptr) return;
  g_cancellable_cancel(cancellable_);
  g_object_unref(cancellable_);
}

ui::Theme ThemeProbe::theme(ui::ColorScheme scheme) const {
  return agreeingTheme(colors_.background, colors_.foreground, scheme);
}

void ThemeProbe::reread() {
  if (cancellable_ != nullptr) {
    g_cancellable_cancel(cancellable_);
    g_object_unref(cancellable_);
  }
  cancellable_ = g_cancellable_new();
  GSubprocess* helper = startHelper();
  if (helper == nullptr) return;
  g_subprocess_communicate_utf8_async(helper, nullptr, cancellable_, onHelperDone, this);
  g_object_unref(helper);
}

void ThemeProbe::received(std::string_view output) {
  const ThemeColors colors = parseThemeColors(output);
  if (colors == colors_) return;
  colors_ = colors;
  changed_();
}

}  // namespace korvo::desktop
