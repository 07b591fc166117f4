#include "cli/widgets.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/clock.hpp"
#include "cli/command_line.hpp"
#include "extension/korvo_widgets.hpp"
#include "shared/moment_text.hpp"
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

CLI::Option* addTextOption(CLI::App* command, const std::string& name,
                           std::optional<std::string>& target, const std::string& description) {
  return command->add_option_function<std::string>(
      name, [&target](const std::string& value) { target = value; }, description);
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

std::optional<std::string> writeStandardOutput(std::string_view bytes) {
  // The reason is taken as the write fails: a later flush no longer knows it.
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() &&
      std::fflush(stdout) == 0) {
    return std::nullopt;
  }
  return std::string("cannot write standard output: ") +
         (errno != 0 ? std::strerror(errno) : "write error");
}

std::optional<std::string> standardOutputFailure() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return std::nullopt;
  return std::string("cannot write standard output: ") +
         (errno != 0 ? std::strerror(errno) : "write error");
}

}  // namespace korvo::cli
