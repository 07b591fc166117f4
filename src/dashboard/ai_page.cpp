#include "dashboard/ai_page.hpp"

#include <algorithm>

#include "app/codex_state_file.hpp"
#include "app/usage_origin.hpp"
#include "base/clock.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "extension/korvo_widgets.hpp"
#include "shared/usage_provider.hpp"
#include "shared/widget_snapshot_store.hpp"

namespace korvo {
namespace {

using namespace dashboard_widgets;

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

AiPage::AiPage(const gtk::AppearanceWatch& appearance) : graphs_(appearance) {
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
  clear(providers_);
  countdowns_.clear();
  origins_.clear();
  const auto snapshot = WidgetSnapshotStore::load(WidgetSnapshotStore::fileURL());
  for (const UsageProvider provider : allCases<UsageProvider>()) {
    const UsageState state = snapshot ? stateOf(*snapshot, provider) : UsageState{};
    gtk_box_pack_start(GTK_BOX(providers_), heading(displayName(provider)), FALSE, FALSE, 0);
    if (!state.enabled || !state.snapshot) {
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
        GtkWidget* meter = gtk_level_bar_new_for_interval(0, 100);
        gtk_level_bar_set_value(GTK_LEVEL_BAR(meter),
                                std::clamp(100 - window.usedPercent, 0.0, 100.0));
        gtk_box_pack_start(GTK_BOX(providers_), meter, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(providers_), label(window.resetText(), "dim-label"), FALSE,
                           FALSE, 0);
        GtkWidget* countdown = label(window.resetCountdown(clock::now()), "dim-label");
        gtk_box_pack_start(GTK_BOX(providers_), countdown, FALSE, FALSE, 0);
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
