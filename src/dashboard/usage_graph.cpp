#include "dashboard/usage_graph.hpp"

#include <chrono>
#include <iostream>

#include "app/forecast.hpp"
#include "app/graph_model.hpp"
#include "app/history_store.hpp"
#include "app/usage_alerts.hpp"
#include "base/clock.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"

namespace korvo {
namespace {

// The dashboard reads while a publication may write: it shows what it has rather than wait.
constexpr std::chrono::milliseconds historyPatience{200};

}  // namespace

UsageGraphs::UsageGraphs(const gtk::AppearanceWatch& appearance) : appearance_(appearance) {
  box_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  gtk_box_pack_start(GTK_BOX(box_), dashboard_widgets::heading(_("Use over each window")), FALSE,
                     FALSE, 0);
  graphs_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
  atk_object_set_name(gtk_widget_get_accessible(graphs_), _("Usage graphs").c_str());
  atk_object_set_role(gtk_widget_get_accessible(graphs_), ATK_ROLE_PANEL);
  gtk_box_pack_start(GTK_BOX(box_), graphs_, FALSE, FALSE, 0);
}

void UsageGraphs::show(const std::optional<WidgetSnapshot>& snapshot) {
  dashboard_widgets::clear(graphs_);
  views_.clear();
  if (!snapshot) return;
  const Date now = clock::now();
  const auto history = HistoryStore::openExisting(std::cerr, now, historyPatience);
  for (const auto& [name, metric, state] : {std::tuple{"Codex", "codex.", &snapshot->codex},
                                            std::tuple{"Claude", "claude.", &snapshot->claude}}) {
    if (!state->enabled || !state->snapshot) continue;
    for (const UsageWindow& window : state->snapshot->windows) {
      const std::string key = metric + window.title;
      const auto length = graphs::windowSeconds(window.title).value_or(forecast::paceSeconds);
      const Date start = (window.resetsAt ? *window.resetsAt : now).addingSeconds(-length);
      const auto readings = history ? history->rows(start, now, key) : std::vector<HistoryRow>{};
      const auto found = forecast::forecast(readings, window, now);
      auto view = std::make_unique<GraphView>(appearance_);
      view->show(graphs::usageGraph(usage_alerts::windowName(name, window.title), window, readings,
                                    found, now));
      view->packInto(graphs_);
      views_.push_back(std::move(view));
    }
  }
  gtk_widget_show_all(box_);
}

}  // namespace korvo
