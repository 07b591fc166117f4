#include <filesystem>
#include <iostream>

#include "base/clock.hpp"
#include "cli/commands.hpp"
#include "cli/render_widget.hpp"
#include "cli/widgets.hpp"
#include "ui/words.hpp"

namespace korvo::cli {
namespace {

struct GalleryOptions {
  std::string directory = "korvo-gallery";
  std::optional<std::string> now;
};

struct Picture {
  const WidgetConfiguration* widget = nullptr;
  ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
  ui::ColorScheme scheme = ui::ColorScheme::light;
  EntryRequest request = EntryRequest::placeholder;
  std::string file;  // relative to the gallery folder
};

std::string htmlEscaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string_view requestWord(EntryRequest request) {
  return request == EntryRequest::placeholder ? "placeholder" : "live";
}

// One section per widget, one figure per family, scheme and entry, at the widget's size in CSS
// pixels (the PNGs are drawn at 2x).
std::string indexPage(const std::vector<Picture>& pictures) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<title>korvo-widgets gallery</title>\n<style>\n"
      "body { font-family: Inter, sans-serif; margin: 24px; background: #f4f4f4; }\n"
      "section { margin-bottom: 32px; }\n"
      ".row { display: flex; flex-wrap: wrap; gap: 20px; align-items: flex-start; }\n"
      "figure { margin: 0; padding: 12px; border-radius: 12px; }\n"
      "figure.light { background: #ffffff; } figure.dark { background: #1e1e1e; color: #eee; }\n"
      "figcaption { font-size: 12px; margin-top: 6px; }\n"
      "</style>\n</head>\n<body>\n<h1>korvo-widgets gallery</h1>\n";
  const WidgetConfiguration* current = nullptr;
  for (const Picture& picture : pictures) {
    if (picture.widget != current) {
      if (current != nullptr) {
        html += "</div>\n</section>\n";
      }
      current = picture.widget;
      html += "<section>\n<h2>" + htmlEscaped(current->displayName) + " <small>" +
              htmlEscaped(current->kind) + "</small></h2>\n<p>" +
              htmlEscaped(current->description) + "</p>\n<div class=\"row\">\n";
    }
    const ui::Size size = ui::familySize(picture.family);
    html += "<figure class=\"" + std::string(ui::colorSchemeWord(picture.scheme)) +
            "\"><img src=\"" + htmlEscaped(picture.file) + "\" width=\"" +
            std::to_string(int(size.width)) + "\" height=\"" + std::to_string(int(size.height)) +
            "\" alt=\"" + htmlEscaped(picture.widget->displayName) + "\"><figcaption>" +
            std::string(ui::familyWord(picture.family)) + " · " +
            std::string(ui::colorSchemeWord(picture.scheme)) + " · " +
            std::string(requestWord(picture.request)) + "</figcaption></figure>\n";
  }
  if (current != nullptr) {
    html += "</div>\n</section>\n";
  }
  return html + "</body>\n</html>\n";
}

void run(const GalleryOptions& options, desktop::CommandOutcome& outcome) {
  if (options.directory.empty()) {
    throw UsageError("-o: an empty name names no folder");
  }
  pinClock(options.now);
  const std::filesystem::path directory = options.directory;
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) {
    std::cerr << "korvo-widgets: cannot create " << directory.string() << ": " << error.message()
              << '\n';
    outcome.exitCode = exitFailure;
    return;
  }

  std::vector<Picture> pictures;
  for (const WidgetConfiguration& widget : desktop::widgets()) {
    for (const ui::WidgetFamily family : widget.supportedFamilies) {
      const TimelineContext context{.isPreview = false, .family = family};
      for (const EntryRequest request : {EntryRequest::placeholder, EntryRequest::timeline}) {
        const AnyEntry entry = requestEntry(widget, request, context);
        for (const ui::ColorScheme scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
          Picture picture{&widget, family, scheme, request,
                          widget.shortKind() + "-" + std::string(ui::familyWord(family)) + "-" +
                              std::string(ui::colorSchemeWord(scheme)) + "-" +
                              std::string(requestWord(request)) + ".png"};
          ui::Environment environment;
          environment.family = family;
          environment.colorScheme = scheme;
          environment.now = clock::now();
          const auto png = renderEntry(widget, entry, environment, OutputFormat::png, 2);
          const std::filesystem::path path = directory / picture.file;
          if (!png) {
            std::cerr << "korvo-widgets: cannot render " << path.string() << '\n';
            outcome.exitCode = exitFailure;
            return;
          }
          if (const auto failure = writeFile(path, *png)) {
            std::cerr << "korvo-widgets: " << *failure << '\n';
            outcome.exitCode = exitFailure;
            return;
          }
          std::cout << "rendered " << path.string() << '\n';
          pictures.push_back(std::move(picture));
        }
      }
    }
  }

  const std::filesystem::path index = directory / "index.html";
  if (const auto failure = writeFile(index, indexPage(pictures))) {
    std::cerr << "korvo-widgets: " << *failure << '\n';
    outcome.exitCode = exitFailure;
    return;
  }
  std::cout << "gallery: " << std::filesystem::absolute(index).string() << '\n';
  outcome.exitCode = exitSuccess;
}

}  // namespace

void addGalleryCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "gallery",
      "Render every widget in every family it offers, light and dark, placeholder and live, as "
      "PNGs with an index.html that shows them side by side.");
  auto options = std::make_shared<GalleryOptions>();
  command->add_option("-o,--output", options->directory, "Folder to write into (created).")
      ->default_str("korvo-gallery");
  addTextOption(command, "--now", options->now,
                "Stand-in for the clock: ISO 8601 with a zone or Unix seconds.");
  command->callback([options, &outcome] { run(*options, outcome); });
}

}  // namespace korvo::cli
