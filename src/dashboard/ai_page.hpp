#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <utility>
#include <vector>

#include "dashboard/usage_graph.hpp"
#include "gtk/widget_card.hpp"
#include "shared/usage_snapshot.hpp"
#include "shared/usage_window.hpp"

namespace korvo {

// The dashboard's AI tab: per provider its name, status, where the figures came from and how old
// they are, each window's remaining share with a meter, its reset moment and a live countdown,
// Codex's plan, credits and other limits, and a button to the provider's usage page.
class AiPage {
 public:
  explicit AiPage(const gtk::AppearanceWatch& appearance);
  GtkWidget* widget() const { return page_; }
  // Reads the shared file again.
  void refresh();
  // Advances the countdowns.
  void tick();

 private:
  GtkWidget* page_;
  GtkWidget* providers_;
  std::unique_ptr<WidgetCard> card_;
  UsageGraphs graphs_;
  std::vector<std::pair<GtkWidget*, UsageWindow>> countdowns_;
  std::vector<std::pair<GtkWidget*, UsageSnapshot>> origins_;  // the figures' source and age
};

}  // namespace korvo
