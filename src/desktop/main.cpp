#include <gtk/gtk.h>
#include <malloc.h>

#include <clocale>
#include <cstdio>
#include <string>

#include "base/clock.hpp"
#include "base/exit_codes.hpp"
#include "desktop/core/command_line.hpp"
#include "desktop/core/host_tunables.hpp"
#include "desktop/desktop.hpp"
#include "desktop/display_choice.hpp"
#include "desktop/run_options.hpp"
#include "desktop/session_instance.hpp"
#include "extension/korvo_widgets.hpp"
#include "gtk/bare_theme.hpp"
#include "gtk/theme_helper.hpp"

namespace {

using namespace korvo;

int run(desktop::RunArguments arguments, const std::vector<WidgetConfiguration>& widgets) {
  // The environment is set while this is the only thread.
  gtk::adoptBareTheme();
  // The cards are painted with Cairo in memory; probing OpenGL for visuals would load the GL driver
  // (tens of megabytes) for nothing. A GDK_GL the user set still wins.
  g_setenv("GDK_GL", "disable", FALSE);
  auto options = desktop::resolveRunOptions(std::move(arguments), widgets);
  if (options.warp != TimeWarp{}) {
    clock::setWarp(options.warp.offsetSeconds, options.warp.rate);
  }
  // Before the display: a second host leaves at once, with or without one.
  desktop::DesktopHost* shown = nullptr;
  desktop::SessionInstance instance(
      options.replace,
      [] {
        std::fprintf(stderr, "korvo-widgets: another desktop host took over this session\n");
        gtk_main_quit();
      },
      [&shown] {
        if (shown != nullptr) shown->reloadTimelines();
      });
  if (instance.claim() == desktop::SessionInstance::Claim::taken) {
    const auto owner = instance.ownerProcess();
    const std::string which = owner ? " (pid " + std::to_string(*owner) + ")" : "";
    std::fprintf(stderr,
                 "korvo-widgets: the desktop host is already running in this session%s; "
                 "--replace takes over\n",
                 which.c_str());
    return exitSuccess;
  }
  const auto display = desktop::chooseDisplay(desktop::currentDisplayFacts());
  if (display != desktop::DisplayChoice::asIs) {
    std::fprintf(stderr, "%s\n", desktop::displayChoiceNotice(display).c_str());
  }
  if (display == desktop::DisplayChoice::xwayland) gdk_set_allowed_backends("x11");
  if (!gtk_init_check(nullptr, nullptr)) {
    std::fprintf(stderr,
                 "korvo-widgets: cannot open the display (is DISPLAY or WAYLAND_DISPLAY set?)\n");
    return exitFailure;
  }
  desktop::DesktopHost host(widgets, std::move(options));
  shown = &host;
  host.run();
  return exitSuccess;
}

// The command line of `korvo-widgets run`, parsed and run.
int runCommandLine(int argc, char** argv) {
  static const std::vector<WidgetConfiguration> widgets = KorvoWidgets{}.body();

  CLI::App app(
      "Show the widgets on the desktop: one window per placed widget, kept current by its "
      "provider's timeline. Placements come from --widget, else "
      "$XDG_CONFIG_HOME/korvo-widgets/placements.json (re-read on change and on SIGHUP), else "
      "all four widgets in a column at the right edge.",
      "korvo-widgets run");
  desktop::RunArguments arguments;
  desktop::addRunOptions(app, arguments);
  // The host's own helper (theme_helper.hpp), not for users: left out of --help.
  bool themeColors = false;
  app.add_flag("--theme-colors", themeColors)->group("");
  desktop::CommandOutcome outcome;
  app.callback([&] {
    outcome.exitCode = themeColors ? gtk::printThemeColors() : run(std::move(arguments), widgets);
  });
  return desktop::parseAndRun(app, argc, argv, "korvo-widgets", outcome);
}

}  // namespace

// The desktop host, started by `korvo-widgets run` with the arguments that follow `run`.
int main(int argc, char** argv) {
  // GLib's worker thread would otherwise allocate in a heap of its own, holding about 150 kB
  // more in a process that mostly waits; one heap serves both threads.
  mallopt(M_ARENA_MAX, 1);
  // `run` set these for this process alone (desktop/core/host_tunables.hpp).
  if (g_strcmp0(g_getenv(desktop::tunablesVariable), desktop::hostTunables) == 0) {
    g_unsetenv(desktop::tunablesVariable);
  }
  std::setlocale(LC_ALL, "");
  return korvo::runReportingFailures("korvo-widgets", [&] { return runCommandLine(argc, argv); });
}
