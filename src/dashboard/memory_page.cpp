#include "dashboard/memory_page.hpp"

#include "base/c_format.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "extension/korvo_widgets.hpp"
#include "sampling/memory_format.hpp"
#include "sources/cpu_temperature.hpp"
#include "sources/user_paths.hpp"

namespace korvo {
namespace {

using namespace dashboard_widgets;

std::string percentText(double fraction) {
  return cFormat("%.0f%%", fraction * 100);
}

}  // namespace

MemoryPage::MemoryPage(const gtk::AppearanceWatch& appearance)
    : sampler_(SystemSampler::fromEnvironment()), graphs_(appearance) {
  static const KorvoMemoryWidget memory;
  static const WidgetConfiguration configuration = memory.body();
  GtkWidget* content = nullptr;
  page_ = scrolledPage(&content);
  card_ = std::make_unique<WidgetCard>(configuration, ui::WidgetFamily::systemMedium, appearance);
  gtk_box_pack_start(GTK_BOX(content), card_->widget(), FALSE, FALSE, 0);
  headline_ = label("");
  gtk_box_pack_start(GTK_BOX(content), headline_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), figures_.widget(), FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), graphs_.widget(), FALSE, FALSE, 0);
  sampler_.readCPU();  // the first reading only sets the baseline
}

void MemoryPage::refresh(DisplayMode mode) {
  card_->refresh();
  const auto reading = sampler_.readMemory();
  gchar* markup = g_markup_printf_escaped(
      "<span size='xx-large' weight='bold'>%s</span>  %s",
      reading ? MemoryFormat::modeText(*reading, mode).c_str() : "—", korvo::label(mode).c_str());
  // Set only on a change: every set is announced to screen readers.
  if (headlineMarkup_ != markup) {
    headlineMarkup_ = markup;
    gtk_label_set_markup(GTK_LABEL(headline_), markup);
  }
  g_free(markup);

  std::vector<Figure> figures;
  if (reading) {
    figures.push_back({_("Used"), MemoryFormat::gigabytes(reading->used()) + " / " +
                                      MemoryFormat::gigabytes(reading->total)});
    figures.push_back({_("Available"), MemoryFormat::gigabytes(reading->available())});
    figures.push_back({_("App"), MemoryFormat::compactSize(reading->app)});
    figures.push_back({_("Wired"), MemoryFormat::compactSize(reading->wired)});
    figures.push_back({_("Compressed"), MemoryFormat::compactSize(reading->compressed)});
    figures.push_back({_("Cached"), MemoryFormat::compactSize(reading->cached)});
    figures.push_back(
        {_("Swap"), reading->swap ? MemoryFormat::compactSize(*reading->swap) : _("Unavailable")});
    figures.push_back({_("Pressure"), std::string(rawValue(reading->pressure))});
  } else {
    figures.push_back({_("Memory"), _("Unavailable")});
  }
  const auto cpu = sampler_.readCPU();
  figures.push_back({_("CPU load"), cpu ? percentText(*cpu) : _("Measuring…")});
  const auto temperature = readCpuTemperature(systemRoot());
  if (temperature) {
    const std::string sensor =
        temperature->chip + (temperature->label.empty() ? "" : " · " + temperature->label);
    figures.push_back({_("CPU temperature"), degreesText(temperature->celsius, unit_)});
    figures.push_back({_("Sensor"), sensor});
  } else {
    figures.push_back({_("CPU temperature"), _("No CPU sensor found")});
  }
  figures_.show(figures);
  graphs_.sample({reading, cpu, temperature ? std::optional(temperature->celsius) : std::nullopt,
                  readCpuSensors(systemRoot())},
                 unit_);
}

}  // namespace korvo
