#include "cli/widgets.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/clock.hpp"
#include "desktop/core/command_line.hpp"
#include "extension/korvo_widgets.hpp"
#include "shared/moment_text.hpp"
#include "ui/words.hpp"

namespace korvo::cli {

const WidgetConfiguration& widgetNamed(std::string_view kind) {
  if (const WidgetConfiguration* widget = findWidget(desktop::widgets(), kind)) {
    return *widget;
  }
  throw UsageError("unknown widget kind \"" + std::string(kind) + "\"; " + desktop::validKinds());
}

void addKindArgument(CLI::App* command, std::string& kind) {
  command
      ->add_option("KIND", kind,
                   "Widget kind, full (com.tessmoor.Korvo.memory) or its last word (memory).")
      ->required();
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

void pinClock(const std::optional<std::string>& moment) {
  if (!moment) {
    return;
  }
  const std::optional<Date> date = parseMoment(*moment);
  if (!date) {
    throw UsageError("--now: cannot read \"" + *moment +
                     "\"; valid forms: ISO 8601 with a zone (2026-11-15T01:45:00Z) or Unix "
                     "seconds (1794707100)");
  }
  clock::setFixed(*date);
}

std::optional<std::string> writeFile(const std::filesystem::path& path, std::string_view bytes) {
  const auto failure = [&](int error) {
    return "cannot write " + path.string() + ": " + std::strerror(error);
  };
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return failure(errno);
  int error = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() ? 0 : errno;
  // Closing writes what is still buffered, so it fails too when the disk is full.
  if (std::fclose(file) != 0 && error == 0) error = errno;
  if (error != 0) return failure(error);
  return std::nullopt;
}

}  // namespace korvo::cli
