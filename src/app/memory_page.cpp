#include "app/memory_page.hpp"

#include "app/dashboard_widgets.hpp"
#include "base/c_format.hpp"
#include "base/text.hpp"
#include "extension/korvo_widgets.hpp"
#include "sampling/memory_format.hpp"
#include "sources/cpu_temperature.hpp"
#include "sources/user_paths.hpp"

namespace korvo {
namespace {

using namespace dashboard_widgets;

// One "name  value" row of the figures grid.
void addRow(GtkWidget* grid, int row, const std::string& name, const std::string& value) {
  gtk_grid_attach(GTK_GRID(grid), label(name, "dim-label"), 0, row, 1, 1);
  GtkWidget* figure = label(value);
  gtk_widget_set_hexpand(figure, TRUE);
  gtk_grid_attach(GTK_GRID(grid), figure, 1, row, 1, 1);
}

std::string percentText(double fraction) {
  return cFormat("%.0f%%", fraction * 100);
}

}  // namespace

MemoryPage::MemoryPage(const desktop::AppearanceWatch& appearance)
    : sampler_(SystemSampler::fromEnvironment()) {
  static const KorvoMemoryWidget memory;
  static const WidgetConfiguration configuration = memory.body();
  GtkWidget* content = nullptr;
  page_ = scrolledPage(&content);
  card_ = std::make_unique<WidgetCard>(configuration, ui::WidgetFamily::systemMedium, appearance);
  gtk_box_pack_start(GTK_BOX(content), card_->widget(), FALSE, FALSE, 0);
  figures_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  gtk_box_pack_start(GTK_BOX(content), figures_, FALSE, FALSE, 0);
  sampler_.readCPU();  // the first reading only sets the baseline
}

void MemoryPage::refresh(DisplayMode mode) {
  card_->refresh();
  clear(figures_);
  const auto reading = sampler_.readMemory();
  GtkWidget* headline = label("", "");
  gchar* markup = g_markup_printf_escaped(
      "<span size='xx-large' weight='bold'>%s</span>  %s",
      reading ? MemoryFormat::modeText(*reading, mode).c_str() : "—", korvo::label(mode).c_str());
  gtk_label_set_markup(GTK_LABEL(headline), markup);
  g_free(markup);
  gtk_box_pack_start(GTK_BOX(figures_), headline, FALSE, FALSE, 0);

  GtkWidget* grid = gtk_grid_new();
  gtk_grid_set_column_spacing(GTK_GRID(grid), 18);
  gtk_grid_set_row_spacing(GTK_GRID(grid), 4);
  int row = 0;
  if (reading) {
    addRow(
        grid, row++, _("Used"),
        MemoryFormat::gigabytes(reading->used()) + " / " + MemoryFormat::gigabytes(reading->total));
    addRow(grid, row++, _("Available"), MemoryFormat::gigabytes(reading->available()));
    addRow(grid, row++, _("App"), MemoryFormat::compactSize(reading->app));
    addRow(grid, row++, _("Wired"), MemoryFormat::compactSize(reading->wired));
    addRow(grid, row++, _("Compressed"), MemoryFormat::compactSize(reading->compressed));
    addRow(grid, row++, _("Cached"), MemoryFormat::compactSize(reading->cached));
    addRow(grid, row++, _("Swap"),
           reading->swap ? MemoryFormat::compactSize(*reading->swap) : _("Unavailable"));
    addRow(grid, row++, _("Pressure"), std::string(rawValue(reading->pressure)));
  } else {
    addRow(grid, row++, _("Memory"), _("Unavailable"));
  }
  const auto cpu = sampler_.readCPU();
  addRow(grid, row++, _("CPU load"), cpu ? percentText(*cpu) : _("Measuring…"));
  if (const auto temperature = readCpuTemperature(systemRoot())) {
    const std::string sensor =
        temperature->chip + (temperature->label.empty() ? "" : " · " + temperature->label);
    addRow(grid, row++, _("CPU temperature"), cFormat("%.0f°C", temperature->celsius));
    addRow(grid, row++, _("Sensor"), sensor + " (" + temperature->file.string() + ")");
  } else {
    addRow(grid, row++, _("CPU temperature"), _("No CPU sensor found"));
  }
  gtk_box_pack_start(GTK_BOX(figures_), grid, FALSE, FALSE, 0);
  gtk_widget_show_all(figures_);
}

}  // namespace korvo
