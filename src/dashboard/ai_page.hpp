#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "dashboard/claude_connection.hpp"
#include "dashboard/usage_graph.hpp"
#include "gtk/widget_card.hpp"
#include "shared/usage_provider.hpp"
#include "shared/usage_snapshot.hpp"
#include "shared/usage_window.hpp"

namespace korvo {

// The dashboard's AI tab: per provider its name, status, where the figures came from and how old
// they are, each window's remaining share with a meter in the card's colour, its reset moment and
// a live countdown on one line, Codex's plan, credits and other limits, a button to the provider's
// usage page, and where Claude's figures are missing, "Connect Claude Code".
class AiPage {
 public:
  // `claudeChanged` runs after Claude's status line was connected or disconnected.
  AiPage(const gtk::AppearanceWatch& appearance, std::function<void()> claudeChanged);
  GtkWidget* widget() const { return page_; }
  // Reads the shared file again.
  void refresh();
  // Advances the countdowns.
  void tick();

 private:
  GtkWidget* meter(UsageProvider provider, double usedPercent) const;

  GtkWidget* page_;
  GtkWidget* providers_;
  std::function<void()> claudeChanged_;
  std::unique_ptr<ClaudeConnection> claudeConnection_;  // shown while Claude has no figures
  std::unique_ptr<WidgetCard> card_;
  UsageGraphs graphs_;
  std::vector<std::pair<GtkWidget*, UsageWindow>> countdowns_;
  std::vector<std::pair<GtkWidget*, UsageSnapshot>> origins_;  // the figures' source and age
};

}  // namespace korvo
