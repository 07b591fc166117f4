#include "dashboard/ai_page.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "app/codex_state_file.hpp"
#include "app/usage_origin.hpp"
#include "base/c_format.hpp"
#include "base/clock.hpp"
#include "base/date_text.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "extension/korvo_widgets.hpp"
#include "shared/usage_provider.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "views/monitor/usage_windows.hpp"

namespace korvo {
namespace {

using namespace dashboard_widgets;

int channel(double value) {
  return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

// The buttons under `widget` in the order Tab reaches them.
void collectButtons(GtkWidget* widget, std::vector<GtkWidget*>& buttons) {
  if (GTK_IS_BUTTON(widget)) buttons.push_back(widget);
  if (!GTK_IS_CONTAINER(widget)) return;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* child = children; child != nullptr; child = child->next) {
    collectButtons(GTK_WIDGET(child->data), buttons);
  }
  g_list_free(children);
}

// Which of the buttons under `page` has the keyboard focus, counted from the first.
std::optional<std::size_t> focusedButton(GtkWidget* page) {
  GtkWidget* window = gtk_widget_get_toplevel(page);
  GtkWidget* focus = GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
  if (focus == nullptr || !gtk_widget_is_ancestor(focus, page)) return std::nullopt;
  std::vector<GtkWidget*> buttons;
  collectButtons(page, buttons);
  const auto at = std::find(buttons.begin(), buttons.end(), focus);
  if (at == buttons.end()) return std::nullopt;
  return static_cast<std::size_t>(at - buttons.begin());
}

void focusButton(GtkWidget* widget, std::size_t index) {
  std::vector<GtkWidget*> buttons;
  collectButtons(widget, buttons);
  if (!buttons.empty()) gtk_widget_grab_focus(buttons[std::min(index, buttons.size() - 1)]);
}

const UsageState& stateOf(const WidgetSnapshot& snapshot, UsageProvider provider) {
  return provider == UsageProvider::codex ? snapshot.codex : snapshot.claude;
}

void openPage(GtkButton* button, gpointer) {
  const char* url = static_cast<const char*>(g_object_get_data(G_OBJECT(button), "url"));
  GtkWidget* window = gtk_widget_get_toplevel(GTK_WIDGET(button));
  gtk_show_uri_on_window(GTK_IS_WINDOW(window) ? GTK_WINDOW(window) : nullptr, url,
                         GDK_CURRENT_TIME, nullptr);
}

}  // namespace

// A meter of the remaining share in the provider's colour on the card, as the card's scheme
// gives it, with none of the theme's low and high levels.
GtkWidget* AiPage::meter(UsageProvider provider, double usedPercent) const {
  GtkWidget* bar = gtk_level_bar_new_for_interval(0, 100);
  for (const char* level :
       {GTK_LEVEL_BAR_OFFSET_LOW, GTK_LEVEL_BAR_OFFSET_HIGH, GTK_LEVEL_BAR_OFFSET_FULL}) {
    gtk_level_bar_remove_offset_value(GTK_LEVEL_BAR(bar), level);
  }
  gtk_level_bar_set_value(GTK_LEVEL_BAR(bar), std::clamp(100 - usedPercent, 0.0, 100.0));
  ui::Environment environment;
  environment.colorScheme = card_->scheme();
  const ui::Color tint = UsageWindows::tint(provider, environment.palette());
  const std::string css = cFormat(
      "levelbar block { min-height: 6px; } levelbar block.filled { background-color: "
      "rgb(%d,%d,%d); "
      "border-color: rgb(%d,%d,%d); }",
      channel(tint.red), channel(tint.green), channel(tint.blue), channel(tint.red),
      channel(tint.green), channel(tint.blue));
  GtkCssProvider* style = gtk_css_provider_new();
  gtk_css_provider_load_from_data(style, css.c_str(), -1, nullptr);
  gtk_style_context_add_provider(gtk_widget_get_style_context(bar), GTK_STYLE_PROVIDER(style),
                                 GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  g_object_unref(style);
  atk_object_set_name(gtk_widget_get_accessible(bar), _("Remaining").c_str());
  return bar;
}

AiPage::AiPage(const gtk::AppearanceWatch& appearance, std::function<void()> claudeChanged)
    : claudeChanged_(std::move(claudeChanged)), graphs_(appearance) {
  static const KorvoUsageWidget usage;
  static const WidgetConfiguration configuration = usage.body();
  GtkWidget* content = nullptr;
  page_ = scrolledPage(&content);
  card_ = std::make_unique<WidgetCard>(configuration, ui::WidgetFamily::systemMedium, appearance);
  gtk_box_pack_start(GTK_BOX(content), card_->widget(), FALSE, FALSE, 0);
  providers_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  gtk_box_pack_start(GTK_BOX(content), providers_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), graphs_.widget(), FALSE, FALSE, 0);
}

void AiPage::refresh() {
  card_->refresh();
  // The figures are built anew; a keyboard user's focus returns to the same button.
  const auto focused = focusedButton(providers_);
  clear(providers_);
  claudeConnection_.reset();
  countdowns_.clear();
  origins_.clear();
  const auto snapshot = WidgetSnapshotStore::load(WidgetSnapshotStore::fileURL());
  for (const UsageProvider provider : allCases<UsageProvider>()) {
    const UsageState state = snapshot ? stateOf(*snapshot, provider) : UsageState{};
    gtk_box_pack_start(GTK_BOX(providers_), heading(displayName(provider)), FALSE, FALSE, 0);
    const bool connectClaude =
        provider == UsageProvider::claude && state.enabled && !state.snapshot;
    if (connectClaude) {
      // Its own line says what connecting does, and when connected, when the figures come.
      claudeConnection_ = std::make_unique<ClaudeConnection>(claudeChanged_);
      if (!claudeConnection_->connected()) {
        gtk_box_pack_start(GTK_BOX(providers_), label(state.statusText(), "dim-label"), FALSE,
                           FALSE, 0);
      }
      gtk_box_pack_start(GTK_BOX(providers_), claudeConnection_->widget(), FALSE, FALSE, 0);
    } else if (!state.enabled || !state.snapshot) {
      gtk_box_pack_start(GTK_BOX(providers_), label(state.statusText(), "dim-label"), FALSE, FALSE,
                         0);
    } else {
      // Where the figures came from and their age, which ticks, in place of the status.
      GtkWidget* origin =
          label(usage_origin::originText(*state.snapshot, clock::now()), "dim-label");
      gtk_box_pack_start(GTK_BOX(providers_), origin, FALSE, FALSE, 0);
      origins_.emplace_back(origin, *state.snapshot);
      for (const UsageWindow& window : state.snapshot->windows) {
        gtk_box_pack_start(GTK_BOX(providers_), label(window.remainingSummary()), FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(providers_), meter(provider, window.usedPercent), FALSE, FALSE,
                           0);
        // The reset moment and its countdown share one line.
        GtkWidget* reset = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
        const std::string moment =
            window.resetsAt ? _("Resets ") + dateTimeWithinYear(*window.resetsAt, clock::now())
                            : window.resetText();
        gtk_box_pack_start(GTK_BOX(reset), label(moment, "dim-label"), TRUE, TRUE, 0);
        GtkWidget* countdown = label(window.resetCountdown(clock::now()), "dim-label");
        gtk_label_set_xalign(GTK_LABEL(countdown), 1);
        gtk_box_pack_end(GTK_BOX(reset), countdown, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(providers_), reset, FALSE, FALSE, 0);
        countdowns_.emplace_back(countdown, window);
      }
      if (provider == UsageProvider::codex) {
        for (const std::string& line :
             usage_origin::codexDetails(codex_state_file::load(), *state.snapshot)) {
          gtk_box_pack_start(GTK_BOX(providers_), label(line, "dim-label"), FALSE, FALSE, 0);
        }
      }
    }
    GtkWidget* button = gtk_button_new_with_label(_("Open usage page").c_str());
    g_object_set_data_full(G_OBJECT(button), "url",
                           g_strdup(usagePageURL(provider).string().c_str()), g_free);
    g_signal_connect(button, "clicked", G_CALLBACK(&openPage), nullptr);
    gtk_widget_set_halign(button, GTK_ALIGN_START);
    gtk_box_pack_start(GTK_BOX(providers_), button, FALSE, FALSE, 0);
  }
  gtk_widget_show_all(providers_);
  graphs_.show(snapshot);
  if (focused) focusButton(providers_, *focused);
}

void AiPage::tick() {
  const Date now = clock::now();
  for (const auto& [countdown, window] : countdowns_) {
    gtk_label_set_text(GTK_LABEL(countdown), window.resetCountdown(now).c_str());
  }
  for (const auto& [origin, snapshot] : origins_) {
    gtk_label_set_text(GTK_LABEL(origin), usage_origin::originText(snapshot, now).c_str());
  }
}

}  // namespace korvo
