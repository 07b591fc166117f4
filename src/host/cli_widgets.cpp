#include "host/cli_widgets.hpp"

#include "base/clock.hpp"
#include "extension/korvo_widgets.hpp"
#include "host/cli_errors.hpp"
#include "host/cli_moment.hpp"

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

std::string_view familyWord(ui::WidgetFamily family) {
  return family == ui::WidgetFamily::systemSmall ? "small" : "medium";
}

std::string familyWords(const WidgetConfiguration& widget) {
  std::string words;
  for (const ui::WidgetFamily family : widget.supportedFamilies) {
    words += (words.empty() ? "" : ", ") + std::string(familyWord(family));
  }
  return words;
}

void requireFamily(const WidgetConfiguration& widget, ui::WidgetFamily family) {
  if (!widget.supports(family)) {
    throw UsageError("widget " + widget.shortKind() + " does not offer the " +
                     std::string(familyWord(family)) +
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
