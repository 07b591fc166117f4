#include "dashboard/awake_page.hpp"

#include <cmath>

#include "base/c_format.hpp"
#include "base/clock.hpp"
#include "base/date_text.hpp"
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
  page.act(page.keepAwake().extend(AwakeDuration{page.defaultMinutes() * 60LL}));
}

void stopPressed(GtkButton*, gpointer data) {
  auto& page = *static_cast<AwakePage*>(data);
  page.act(page.keepAwake().stop());
}

}  // namespace

AwakePage::AwakePage(KeepAwake& keepAwake, std::function<int()> defaultMinutes)
    : keepAwake_(keepAwake), defaultMinutes_(std::move(defaultMinutes)) {
  GtkWidget* content = nullptr;
  page_ = scrolledPage(&content);
  state_ = label("", "");
  countdown_ = label("", "");
  inhibitors_ = label("", "dim-label");
  message_ = label("", "dim-label");
  gtk_box_pack_start(GTK_BOX(content), state_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), countdown_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), inhibitors_, FALSE, FALSE, 0);
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
  gtk_box_pack_start(GTK_BOX(content), message_, FALSE, FALSE, 0);
}

void AwakePage::act(const KeepAwake::Outcome& outcome) {
  gtk_label_set_text(GTK_LABEL(message_), outcome.message.c_str());
  refresh();
}

void AwakePage::refresh() {
  const auto& session = keepAwake_.session();
  std::string state = !session ? _("Keep Awake is off: this machine sleeps as usual.")
                      : session->endsAt
                          ? _("Keeping this machine awake until ") +
                                shortTimeOrDateTime(*session->endsAt, clock::now()) + "."
                          : _("Keeping this machine awake until you stop it.");
  gchar* markup = g_markup_printf_escaped("<big><b>%s</b></big>", state.c_str());
  gtk_label_set_markup(GTK_LABEL(state_), markup);
  g_free(markup);
  const std::string held = joined(keepAwake_.held(), ", ", [](Inhibitor inhibitor) {
    return inhibitor == Inhibitor::logind ? _("logind (idle and sleep)") : _("the session (idle)");
  });
  gtk_label_set_text(GTK_LABEL(inhibitors_), (_("Inhibitors held: ") + held).c_str());
  // Without a session there is no countdown and nothing held: no empty lines either.
  gtk_widget_set_visible(inhibitors_, gtk::glibBool(session.has_value()));
  gtk_widget_set_visible(countdown_, gtk::glibBool(session.has_value()));
  gtk_button_set_label(GTK_BUTTON(extend_),
                       (_("Extend by ") + std::to_string(defaultMinutes()) + _(" min")).c_str());
  gtk_widget_set_sensitive(stop_, gtk::glibBool(session.has_value()));
  tick();
}

void AwakePage::tick() {
  const auto& session = keepAwake_.session();
  const std::string text = !session          ? ""
                           : session->endsAt ? timeLeft(*session->endsAt, clock::now())
                                             : _("No end set");
  gtk_label_set_text(GTK_LABEL(countdown_), text.c_str());
}

}  // namespace korvo
