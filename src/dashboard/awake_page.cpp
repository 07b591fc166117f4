#include "dashboard/awake_page.hpp"

#include <cmath>
#include <iostream>

#include "app/awake_state_line.hpp"
#include "app/settings_file.hpp"
#include "base/c_format.hpp"
#include "base/clock.hpp"
#include "base/exit_codes.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "gtk/glib_bool.hpp"

namespace korvo {
namespace {

using namespace dashboard_widgets;

// The lengths the page offers, seconds; none is indefinitely.
struct Choice {
  const char* title;
  std::optional<std::int64_t> seconds;
};
const Choice choices[] = {{"15 min", 15 * 60},
                          {"1 hr", 3600},
                          {"2 hr", 2 * 3600},
                          {"4 hr", 4 * 3600},
                          {"Indefinitely", std::nullopt}};

// "1:59:30 left": hours, minutes and seconds until `end`.
std::string timeLeft(Date end, Date now) {
  const auto seconds = static_cast<long long>(std::ceil(std::max(0.0, end.secondsSince(now))));
  return cFormat("%lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60, seconds % 60) +
         _(" left");
}

// What holding one inhibitor of the two means, or nothing when both or neither are held.
std::string missingInhibitorLine(const std::vector<Inhibitor>& held) {
  if (held.size() != 1) return {};
  return held.front() == Inhibitor::session
             ? _("Only the desktop session agreed: the screen stays on, but the system may "
                 "still suspend this machine (for instance when its lid is closed).")
             : _("Only the system agreed: this machine will not suspend, but the screen may "
                 "still dim and lock.");
}

// A failed command in words a user understands.
std::string failureLine(const KeepAwake::Outcome& outcome) {
  if (outcome.refused) {
    return _(
        "Cannot keep this machine awake: neither the system nor the desktop session "
        "accepted the request.");
  }
  return outcome.message;
}

GtkWidget* button(AwakePage& page, const std::string& title, void (*pressed)(GtkButton*, gpointer),
                  const Choice* choice = nullptr) {
  GtkWidget* widget = gtk_button_new_with_label(title.c_str());
  g_object_set_data(G_OBJECT(widget), "choice", const_cast<Choice*>(choice));
  g_signal_connect(widget, "clicked", G_CALLBACK(pressed), &page);
  return widget;
}

void startPressed(GtkButton* widget, gpointer data) {
  auto& page = *static_cast<AwakePage*>(data);
  const auto* choice = static_cast<const Choice*>(g_object_get_data(G_OBJECT(widget), "choice"));
  page.act(page.keepAwake().start(AwakeDuration{choice->seconds}));
}

void extendPressed(GtkButton*, gpointer data) {
  auto& page = *static_cast<AwakePage*>(data);
  page.act(page.keepAwake().extend(AwakeDuration{page.settings().awakeMinutes * 60LL}));
}

void stopPressed(GtkButton*, gpointer data) {
  auto& page = *static_cast<AwakePage*>(data);
  page.act(page.keepAwake().stop());
}

}  // namespace

AwakePage::AwakePage(KeepAwake& keepAwake, const Settings& settings)
    : keepAwake_(keepAwake), settings_(settings) {
  GtkWidget* content = nullptr;
  page_ = scrolledPage(&content);
  state_ = label("", "");
  countdown_ = label("", "");
  inhibitors_ = label("", "dim-label");
  warning_ = label("", "");
  errorLine_ = label("", "");
  for (GtkWidget* line : {state_, countdown_, inhibitors_, warning_, errorLine_}) {
    gtk_box_pack_start(GTK_BOX(content), line, FALSE, FALSE, 0);
  }
  gtk_box_pack_start(GTK_BOX(content), heading(_("Start a session")), FALSE, FALSE, 0);
  GtkWidget* starts = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  for (const Choice& choice : choices) {
    gtk_box_pack_start(GTK_BOX(starts), button(*this, _(choice.title), &startPressed, &choice),
                       FALSE, FALSE, 0);
  }
  gtk_box_pack_start(GTK_BOX(content), starts, FALSE, FALSE, 0);
  GtkWidget* controls = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  extend_ = button(*this, "", &extendPressed);
  stop_ = button(*this, _("Stop"), &stopPressed);
  gtk_box_pack_start(GTK_BOX(controls), extend_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(controls), stop_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), controls, FALSE, FALSE, 0);
  agents_ = gtk_check_button_new_with_label(_("While Codex or Claude Code works").c_str());
  g_signal_connect(
      agents_, "toggled", G_CALLBACK(+[](GtkToggleButton* widget, gpointer page) {
        static_cast<AwakePage*>(page)->agentsToggled(gtk_toggle_button_get_active(widget) != FALSE);
      }),
      this);
  agentsNote_ = label("", "dim-label");
  gtk_box_pack_start(GTK_BOX(content), agents_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), agentsNote_, FALSE, FALSE, 0);
}

void AwakePage::act(const KeepAwake::Outcome& outcome) {
  error_ = outcome.exitCode == exitSuccess ? std::string() : failureLine(outcome);
  refused_ = outcome.refused;
  refresh();
}

void AwakePage::agentsToggled(bool on) {
  if (showing_) return;
  try {
    settings_file::set(settingKeyWord(SettingKey::awakeWhileAgentsWork), on);
    error_.clear();
  } catch (const std::exception& error) {
    error_ = error.what();
  }
  refresh();
}

void AwakePage::refresh() {
  const auto& session = keepAwake_.session();
  const auto agents = keepAwake_.agents();
  const auto held = keepAwake_.held();
  // A refusal holds no longer once an inhibitor is held.
  if (refused_ && !held.empty()) error_.clear();
  gchar* markup = g_markup_printf_escaped(
      "<big><b>%s</b></big>", awakeStateLine(session, agents, !held.empty(), clock::now()).c_str());
  gtk_label_set_markup(GTK_LABEL(state_), markup);
  g_free(markup);
  const std::string heldText = joined(held, ", ", [](Inhibitor inhibitor) {
    return inhibitor == Inhibitor::logind ? _("the system's (no suspend)")
                                          : _("the desktop session's (the screen stays on)");
  });
  gtk_label_set_text(GTK_LABEL(inhibitors_), (_("Inhibitors held: ") + heldText).c_str());
  gtk_widget_set_visible(inhibitors_, gtk::glibBool(!held.empty()));
  const std::string warning = missingInhibitorLine(held);
  gtk_label_set_text(GTK_LABEL(warning_), warning.c_str());
  gtk_widget_set_visible(warning_, gtk::glibBool(!warning.empty()));
  gtk_label_set_text(GTK_LABEL(errorLine_), error_.c_str());
  gtk_widget_set_visible(errorLine_, gtk::glibBool(!error_.empty()));
  gtk_widget_set_visible(countdown_, gtk::glibBool(session && session->endsAt));
  // Extending does something only to a session with an end.
  gtk_button_set_label(
      GTK_BUTTON(extend_),
      (_("Extend by ") + std::to_string(settings_.awakeMinutes) + _(" min")).c_str());
  gtk_widget_set_sensitive(extend_, gtk::glibBool(session && session->endsAt));
  gtk_widget_set_sensitive(stop_, gtk::glibBool(session.has_value()));
  showing_ = true;
  gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(agents_),
                               gtk::glibBool(settings_.awakeWhileAgentsWork));
  showing_ = false;
  gtk_label_set_text(
      GTK_LABEL(agentsNote_),
      (_("Keeps this machine awake while Codex or Claude Code writes its session files, until "
         "they have been quiet for ") +
       std::to_string(settings_.agentIdleMinutes) + _(" min."))
          .c_str());
  tick();
}

void AwakePage::tick() {
  const auto& session = keepAwake_.session();
  const std::string text =
      session && session->endsAt ? timeLeft(*session->endsAt, clock::now()) : "";
  gtk_label_set_text(GTK_LABEL(countdown_), text.c_str());
}

}  // namespace korvo
