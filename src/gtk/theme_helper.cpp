#include "gtk/theme_helper.hpp"

#include <gdk/gdkwayland.h>
#include <gdk/gdkx.h>
#include <gtk/gtk.h>

#include <cstdio>
#include <string>

#include "gtk/bare_theme.hpp"
#include "gtk/theme_colors_text.hpp"

namespace korvo::gtk {
namespace {

// Opening a display and reading a theme takes well under a second; a helper past this is stuck.
constexpr guint deadlineSeconds = 5;

std::string helperPath() {
  // The file itself rather than /proc/self/exe, which names the interpreter under a profiler;
  // /proc/self/exe still runs the host's own code when an upgrade has replaced the file.
  char* link = g_file_read_link("/proc/self/exe", nullptr);
  std::string path = link != nullptr ? link : "";
  g_free(link);
  return g_file_test(path.c_str(), G_FILE_TEST_IS_EXECUTABLE) ? path : "/proc/self/exe";
}

GSubprocess* startHelper() {
  // Standard error stays the host's: GTK's complaints about the user's theme land in its log.
  GSubprocessLauncher* launcher = g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_STDOUT_PIPE);
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
    std::fprintf(stderr, "korvo-widgets: cannot start %s to read the desktop theme's colours: %s\n",
                 path.c_str(), error->message);
    g_error_free(error);
  }
  return helper;
}

struct HelperWait {
  GSubprocess* helper = nullptr;
  bool done = false;
  bool overdue = false;
  std::optional<ThemeColors> colors;
};

void onHelperDone(GObject*, GAsyncResult* result, gpointer data) {
  auto& wait = *static_cast<HelperWait*>(data);
  wait.done = true;
  char* output = nullptr;
  GError* error = nullptr;
  if (!g_subprocess_communicate_utf8_finish(wait.helper, result, &output, nullptr, &error)) {
    std::fprintf(stderr, "korvo-widgets: cannot read the theme helper's output: %s\n",
                 error->message);
    g_error_free(error);
    return;
  }
  if (wait.overdue) {
    std::fprintf(stderr,
                 "korvo-widgets: the theme helper did not answer within %u s and was stopped\n",
                 deadlineSeconds);
  } else if (!g_subprocess_get_successful(wait.helper)) {
    std::fprintf(stderr, "korvo-widgets: the theme helper failed; the cards keep their colours\n");
  } else {
    wait.colors = parseThemeColors(output != nullptr ? output : "");
  }
  g_free(output);
}

gboolean onDeadline(gpointer data) {
  auto& wait = *static_cast<HelperWait*>(data);
  wait.overdue = true;
  g_subprocess_force_exit(wait.helper);
  return G_SOURCE_REMOVE;
}

}  // namespace

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

std::optional<ThemeColors> runThemeHelper() {
  // The helper's pipe and exit are watched from a context of this call's own.
  GMainContext* context = g_main_context_new();
  g_main_context_push_thread_default(context);
  HelperWait wait;
  wait.helper = startHelper();
  if (wait.helper != nullptr) {
    g_subprocess_communicate_utf8_async(wait.helper, nullptr, nullptr, onHelperDone, &wait);
    GSource* deadline = g_timeout_source_new_seconds(deadlineSeconds);
    g_source_set_callback(deadline, onDeadline, &wait, nullptr);
    g_source_attach(deadline, context);
    while (!wait.done) g_main_context_iteration(context, TRUE);
    g_source_destroy(deadline);
    g_source_unref(deadline);
    g_object_unref(wait.helper);
  }
  g_main_context_pop_thread_default(context);
  g_main_context_unref(context);
  return wait.colors;
}

}  // namespace korvo::gtk
