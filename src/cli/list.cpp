#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/commands.hpp"
#include "cli/widgets.hpp"
#include "ui/words.hpp"

namespace korvo::cli {

void addListCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "list", "List the widgets in gallery order: kind, name, description and families.");
  auto json = std::make_shared<bool>(false);
  command->add_flag("--json", *json,
                    "Print a JSON array of {kind, name, description, families} instead of text.");
  command->callback([json, &outcome] {
    if (*json) {
      nlohmann::ordered_json list = nlohmann::ordered_json::array();
      for (const WidgetConfiguration& widget : desktop::widgets()) {
        nlohmann::ordered_json families = nlohmann::ordered_json::array();
        for (const ui::WidgetFamily family : widget.supportedFamilies) {
          families.push_back(ui::familyName(family));
        }
        list.push_back({{"kind", widget.kind},
                        {"name", widget.displayName},
                        {"description", widget.description},
                        {"families", families}});
      }
      std::cout << list.dump(2) << '\n';
    } else {
      for (const WidgetConfiguration& widget : desktop::widgets()) {
        std::cout << widget.kind << "  " << widget.displayName << "  (" << familyWords(widget)
                  << ")\n    " << widget.description << '\n';
      }
    }
    outcome.exitCode = exitSuccess;
  });
}

}  // namespace korvo::cli
