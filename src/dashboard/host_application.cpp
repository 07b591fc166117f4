#include "dashboard/host_application.hpp"

#include <glib-unix.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <iostream>
#include <sstream>

#include "app/awake_state_line.hpp"
#include "app/settings_file.hpp"
#include "base/clock.hpp"
#include "base/command_line_words.hpp"
#include "base/date_text.hpp"
#include "base/display_text.hpp"
#include "base/exit_codes.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_window.hpp"
#include "dashboard/tray_indicator.hpp"
#include "gtk/notifier.hpp"
#include "gtk/session_bus.hpp"
#include "sampling/memory_format.hpp"
#include "sampling/system_sampler.hpp"
#include "service/link_handler.hpp"
#include "shared/app_identity.hpp"

namespace korvo {
namespace {

// Seconds between two readings of the memory figure the indicator shows.
constexpr guint figureSeconds = 60;
// What "Extend 30 min" on the notification of a session's end adds.
constexpr std::int64_t extendSeconds = std::int64_t{30} * 60;

HostApplication& hostOf(gpointer self) {
  return *static_cast<HostApplication*>(self);
}

std::vector<std::string> argumentsOf(GApplicationCommandLine* invocation) {
  int count = 0;
  gchar** arguments = g_application_command_line_get_arguments(invocation, &count);
  std::vector<std::string> words(arguments, arguments + count);
  g_strfreev(arguments);
  return words;
}

void say(GApplicationCommandLine* invocation, const std::string& line) {
  if (!line.empty()) g_application_command_line_print(invocation, "%s\n", line.c_str());
}

void complain(GApplicationCommandLine* invocation, const std::string& line) {
  // Values from the command line and paths may stand in it; it stays one line.
  g_application_command_line_printerr(invocation, "korvo: %s\n", displayText(line).c_str());
}

std::string statusLine(const std::optional<AwakeSession>& session,
                       const std::optional<AgentHold>& agents, const std::vector<Inhibitor>& held) {
  if (!session && !agents) return _("Keep Awake is off.");
  const std::string until = !session ? _("while ") + agentsWorkingText(agents->agents)
                            : session->endsAt
                                ? _("until ") + shortTimeOrDateTime(*session->endsAt, clock::now())
                                : _("until stopped");
  // The agents' hold stands even when no inhibitor could be had: the line says so.
  const std::string inhibitors =
      held.empty() ? _("no inhibitor held") : joined(held, ", ", inhibitorWord);
  return _("Keep Awake is on ") + until + " (" + inhibitors + ").";
}

// "This machine stays awake until Codex has been quiet for 5 min.": when the agents' hold lets go.
std::string quietText(const std::vector<Agent>& agents, const Settings& settings) {
  return _("This machine stays awake until ") + joined(agents, _(" and "), agentName) +
         (agents.size() == 1 ? _(" has been quiet for ") : _(" have been quiet for ")) +
         std::to_string(settings.agentIdleMinutes) + _(" min.");
}

}  // namespace

HostApplication::HostApplication(bool graphical, bool unique, double clockRate)
    : graphical_(graphical), clockRate_(clockRate) {
  const auto flags = static_cast<GApplicationFlags>(G_APPLICATION_HANDLES_COMMAND_LINE |
                                                    (unique ? 0 : G_APPLICATION_NON_UNIQUE));
  const std::string id(AppIdentity::applicationIdentifier);
  application_ = graphical ? G_APPLICATION(gtk_application_new(id.c_str(), flags))
                           : g_application_new(id.c_str(), flags);
  g_signal_connect(application_, "startup",
                   G_CALLBACK(+[](GApplication*, gpointer self) { hostOf(self).startup(); }), this);
  g_signal_connect(application_, "command-line",
                   G_CALLBACK(+[](GApplication*, GApplicationCommandLine* invocation,
                                  gpointer self) { return hostOf(self).commandLine(invocation); }),
                   this);
}

HostApplication::~HostApplication() {
  for (guint source : signals_) {
    if (source != 0) g_source_remove(source);
  }
  if (figureTimer_ != 0) g_source_remove(figureTimer_);
  tray_.reset();
  dashboard_.reset();
  publishing_.reset();
  keepAwake_.reset();
  notifier_.reset();
  g_object_unref(application_);
}

int HostApplication::run(int argc, char** argv) {
  return g_application_run(application_, argc, argv);
}

// Only the first instance starts up: it is the service from here on.
void HostApplication::startup() {
  g_application_hold(application_);
  for (auto [index, number] : {std::pair{0, SIGTERM}, std::pair{1, SIGINT}}) {
    signals_[index] = g_unix_signal_add(
        number,
        +[](gpointer self) -> gboolean {
          hostOf(self).quit();
          return G_SOURCE_CONTINUE;
        },
        this);
  }
  settings_ = settings_file::load(std::cerr);
  claimLinkHandler(std::cerr);
  notifier_ = std::make_unique<gtk::Notifier>(gtk::sessionBus());
  keepAwake_ = std::make_unique<KeepAwake>(
      std::cerr, clockRate_, gtk::sessionBus(),
      KeepAwake::Events{
          [this] { awakeChanged(); }, [this] { sessionRanOut(); },
          [this](bool started, const std::vector<Agent>& agents) { agentsHold(started, agents); }});
  keepAwake_->resume();
  keepAwake_->watchAgents(settings_);
  publishing_ = std::make_unique<PublishLoop>(std::cerr);
  publishing_->onSettingsRead([this](const Settings& settings) {
    settings_ = settings;
    keepAwake_->watchAgents(settings);
    showAwake();
  });
  publishing_->onAlerts([this](const PublishLoop::Alerts& alerts) { raise(alerts); });
  publishing_->start();
  if (!graphical_) return;
  tray_ = std::make_unique<TrayIndicator>(TrayIndicator::Actions{
      [this](DashboardTab tab) {
        dashboard()->present({tab, std::nullopt});
      },
      [this](AwakeDuration duration) { told(keepAwake_->start(duration)); },
      [this] { told(keepAwake_->stop()); }, [this](bool on) { watchAgents(on); },
      [this] { dashboard()->presentPreferences("monitors"); }, [this] { quitFromMenu(); }});
  addActions();
  showAwake();
  showFigure();
  figureTimer_ = g_timeout_add_seconds(
      figureSeconds,
      +[](gpointer self) -> gboolean {
        hostOf(self).showFigure();
        return G_SOURCE_CONTINUE;
      },
      this);
}

// The actions of the dashboard's menu and keys, which other programs may also ask for over
// D-Bus: `preferences` with the page to show ("widgets" from the desktop widgets' menu).
void HostApplication::addActions() {
  GSimpleAction* preferences = g_simple_action_new("preferences", G_VARIANT_TYPE_STRING);
  g_signal_connect(
      preferences, "activate", G_CALLBACK(+[](GSimpleAction*, GVariant* page, gpointer self) {
        hostOf(self).dashboard()->presentPreferences(g_variant_get_string(page, nullptr));
      }),
      this);
  GSimpleAction* about = g_simple_action_new("about", nullptr);
  g_signal_connect(about, "activate", G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer self) {
                     hostOf(self).showAbout();
                   }),
                   this);
  // Quit closes the windows only: the service keeps publishing for the widgets.
  GSimpleAction* close = g_simple_action_new("close", nullptr);
  g_signal_connect(close, "activate", G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer self) {
                     if (hostOf(self).dashboard_) hostOf(self).dashboard_->close();
                   }),
                   this);
  for (GSimpleAction* action : {preferences, about, close}) {
    g_action_map_add_action(G_ACTION_MAP(application_), G_ACTION(action));
    g_object_unref(action);
  }
  GtkApplication* gtkApplication = GTK_APPLICATION(application_);
  const char* preferencesKeys[] = {"<Primary>comma", nullptr};
  gtk_application_set_accels_for_action(gtkApplication, "app.preferences::monitors",
                                        preferencesKeys);
  const char* closeKeys[] = {"<Primary>q", nullptr};
  gtk_application_set_accels_for_action(gtkApplication, "app.close", closeKeys);
}

void HostApplication::showAbout() {
  GtkWindow* parent = gtk_application_get_active_window(GTK_APPLICATION(application_));
  gtk_show_about_dialog(parent, "program-name", "Korvo", "version", KORVO_VERSION, "comments",
                        _("Resources, AI usage & Keep Awake: the dashboard behind the Korvo "
                          "widgets")
                            .c_str(),
                        "logo-icon-name", "com.tessmoor.Korvo", nullptr);
}

void HostApplication::quit() {
  if (dashboard_) dashboard_.reset();
  g_application_quit(application_);
}

void HostApplication::quitFromMenu() {
  notifier_->send(_("Korvo has quit"),
                  _("The AI Usage and CPU Temperature widgets will not update until Korvo starts "
                    "again. Open Korvo from the applications menu to start it."));
  // The notification must leave before the process does.
  if (GDBusConnection* bus = gtk::sessionBus()) {
    g_dbus_connection_flush_sync(bus, nullptr, nullptr);
  }
  quit();
}

int HostApplication::commandLine(GApplicationCommandLine* invocation) {
  int status = exitSuccess;
  try {
    const HostCommand command = parseHostCommand(argumentsOf(invocation));
    if (const auto* awake = std::get_if<AwakeCommand>(&command)) {
      status = carryOut(*awake, invocation);
    } else if (const auto* open = std::get_if<OpenDashboard>(&command)) {
      status = this->open(*open, invocation);
    } else if (g_application_command_line_get_is_remote(invocation)) {
      complain(invocation, _("the service is already running in this session (pid ") +
                               std::to_string(::getpid()) + ")");
      status = exitFailure;
    }
  } catch (const CLI::ParseError& error) {
    complain(invocation, firstLine(error.what()));
    status = exitUsage;
  } catch (const UsageError& error) {
    complain(invocation, error.what());
    status = exitUsage;
  }
  g_application_command_line_set_exit_status(invocation, status);
  // A first instance started for a command it could not carry out does not stay on as the
  // service; only `korvo service` and a shown dashboard keep it.
  if (status != exitSuccess && !g_application_command_line_get_is_remote(invocation)) {
    quit();
  }
  return status;
}

int HostApplication::carryOut(const AwakeCommand& command, GApplicationCommandLine* invocation) {
  using Action = AwakeCommand::Action;
  if (command.action == Action::status) {
    say(invocation,
        command.json
            ? awakeStatusDocument(keepAwake_->session(), keepAwake_->agents(), keepAwake_->held())
                  .dump()
            : statusLine(keepAwake_->session(), keepAwake_->agents(), keepAwake_->held()));
    return exitSuccess;
  }
  const AwakeDuration duration =
      command.duration.value_or(AwakeDuration{settings_file::load(std::cerr).awakeMinutes * 60LL});
  const KeepAwake::Outcome outcome = command.action == Action::start ? keepAwake_->start(duration)
                                     : command.action == Action::extend
                                         ? keepAwake_->extend(duration)
                                         : keepAwake_->stop();
  if (outcome.exitCode == exitSuccess) {
    say(invocation, outcome.message);
  } else {
    complain(invocation, outcome.message);
  }
  return outcome.exitCode;
}

int HostApplication::open(const OpenDashboard& command, GApplicationCommandLine* invocation) {
  if (!graphical_) {
    complain(invocation, _("no display to show the dashboard on (is DISPLAY or WAYLAND_DISPLAY "
                           "set where korvo service runs?)"));
    return exitFailure;
  }
  if (command.url) {
    dashboard()->present(dashboardDestination(*command.url));
  } else {
    dashboard()->present({});
  }
  return exitSuccess;
}

DashboardWindow* HostApplication::dashboard() {
  if (!dashboard_) {
    // Connecting Claude changes what the shared file says of it: publish at once.
    dashboard_ = std::make_unique<DashboardWindow>(
        GTK_APPLICATION(application_), *keepAwake_, [this] { publishing_->askCodexNow(); },
        [this] { publishing_->publishNow(); });
  }
  return dashboard_.get();
}

void HostApplication::awakeChanged() {
  if (dashboard_) dashboard_->awakeChanged();
  showAwake();
}

void HostApplication::showAwake() {
  if (!tray_) return;
  const auto& session = keepAwake_->session();
  const auto agents = keepAwake_->agents();
  const Date now = clock::now();
  TrayAwake awake;
  awake.kept = !keepAwake_->held().empty();
  awake.session = session.has_value();
  if (session && session->endsAt) {
    awake.minutesLeft =
        std::max(1, static_cast<int>(std::ceil(session->endsAt->secondsSince(now) / 60)));
  }
  awake.watchAgents = settings_.awakeWhileAgentsWork;
  awake.state = awakeStateLine(session, agents, awake.kept, now);
  tray_->setAwake(awake);
}

void HostApplication::told(const KeepAwake::Outcome& outcome) {
  if (outcome.exitCode == exitSuccess) return;
  notifier_->send(_("Cannot keep this machine awake"),
                  outcome.refused ? _("Neither the system nor the desktop session accepted the "
                                      "request.")
                                  : outcome.message);
}

void HostApplication::watchAgents(bool on) {
  try {
    settings_file::set(settingKeyWord(SettingKey::awakeWhileAgentsWork), on);
  } catch (const std::exception& error) {
    std::cerr << "korvo service: " << error.what() << std::endl;
    showAwake();
    return;
  }
  settings_.awakeWhileAgentsWork = on;
  keepAwake_->watchAgents(settings_);
  showAwake();
}

void HostApplication::sessionRanOut() {
  const auto agents = keepAwake_->agents();
  const auto openAwake = [this] {
    if (graphical_) dashboard()->present({DashboardTab::awake, std::nullopt});
  };
  notifier_->send(
      _("Keep Awake ended"),
      agents ? quietText(agents->agents, settings_)
             : _("This machine may sleep again when it is idle."),
      {{"extend", _("Extend 30 min"), [this] { keepAwake_->extend(AwakeDuration{extendSeconds}); }},
       {"open", _("Open Keep Awake"), openAwake},
       {"default", _("Open Keep Awake"), openAwake}});
}

void HostApplication::agentsHold(bool started, const std::vector<Agent>& agents) {
  if (!settings_.agentNotices) return;
  if (started) {
    notifier_->send(agentsWorkingText(agents), quietText(agents, settings_));
  } else {
    notifier_->send(agentsQuietText(agents),
                    _("Nothing written for ") + std::to_string(settings_.agentIdleMinutes) +
                        _(" min: this machine may sleep again when it is idle."));
  }
}

void HostApplication::raise(const PublishLoop::Alerts& alerts) {
  for (const auto& alert : alerts) {
    const DashboardTab tab = alert.tab;
    const auto openTab = [this, tab] {
      if (graphical_) dashboard()->present({tab, std::nullopt});
    };
    const std::string title = _("Open ") + shortTitle(tab);
    notifier_->send(alert.summary, alert.body,
                    {{"open", title, openTab}, {"default", title, openTab}});
  }
}

void HostApplication::showFigure() {
  static SystemSampler sampler = SystemSampler::fromEnvironment();
  const auto reading = sampler.readMemory();
  const auto mode = settings_file::load(std::cerr).memoryDisplayMode;
  tray_->setFigure(reading ? MemoryFormat::modeText(*reading, mode) : "—");
  showAwake();  // the minutes left, on the same wake-up
}

}  // namespace korvo
