#include "cli/widgets.hpp"

#include "base/clock.hpp"
#include "extension/korvo_widgets.hpp"
#include "cli/command_line.hpp"
#include "cli/moment.hpp"
#include "ui/words.hpp"

namespace korvo::cli {

const std::vector<WidgetConfiguration>& widgets() {
  static const std::vector<WidgetConfiguration> bundle = KorvoWidgets{}.body();
  return bundle;
}

const WidgetConfiguration& widgetNamed(std::string_view kind) {
  if (const WidgetConfiguration* widget = findWidget(widgets(), kind)) {
    return *widget;
  }
  throw UsageError("unknown widget kind \"" + std::string(kind) + "\"; " + validKinds());
}

void addKindArgument(CLI::App* command, std::string& kind) {
  command
      ->add_option("KIND", kind,
                   "Widget kind, full (com.tessmoor.Korvo.memory) or its last word (memory).")
      ->required();
}

std::string validKinds() {
  std::string valid;
  for (const WidgetConfiguration& widget : widgets()) {
    valid += (valid.empty() ? "" : ", ") + widget.shortKind();
  }
  return "valid kinds: " + valid + " (or the full kind, e.g. " + widgets().front().kind + ")";
}

std::string familyWords(const WidgetConfiguration& widget) {
  return ui::familyList(widget.supportedFamilies);
}

void requireFamily(const WidgetConfiguration& widget, ui::WidgetFamily family) {
  if (!widget.supports(family)) {
    throw UsageError("widget " + widget.shortKind() + " does not offer the " +
                     std::string(ui::familyWord(family)) +
                     " family; valid families: " + familyWords(widget));
  }
}

void pinClock(const std::string& moment) {
  if (moment.empty()) {
    return;
  }
  const std::optional<Date> date = parseMoment(moment);
  if (!date) {
    throw UsageError("--now: cannot read \"" + moment +
                     "\"; valid forms: ISO 8601 with a zone (2026-11-15T01:45:00Z) or Unix "
                     "seconds (1794707100)");
  }
  clock::setFixed(*date);
}

}  // namespace korvo::cli
