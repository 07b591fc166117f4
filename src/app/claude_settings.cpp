#include "app/claude_settings.hpp"

#include "app/shell_words.hpp"
#include "shared/json_reader.hpp"

namespace korvo::claude_settings {
namespace {

const char* const statusLineKey = "statusLine";

// The words of the status line's command, when it has a command.
std::optional<std::vector<std::string>> commandWords(const Document& settings) {
  const auto statusLine = settings.find(statusLineKey);
  if (statusLine == settings.end() || !statusLine->is_object()) return std::nullopt;
  const auto command = statusLine->find("command");
  if (command == statusLine->end() || !command->is_string()) return std::nullopt;
  return shell_words::split(command->get<std::string>());
}

}  // namespace

std::string korvoCommand(const std::filesystem::path& korvo,
                         const std::optional<std::string>& chain) {
  std::string command = shell_words::quote(korvo.string()) + " claude-statusline";
  if (chain) command += " --chain " + shell_words::quote(*chain);
  return command;
}

bool runsKorvo(const Document& settings) {
  const auto words = commandWords(settings);
  return words && words->size() >= 2 && std::filesystem::path((*words)[0]).filename() == "korvo" &&
         (*words)[1] == "claude-statusline";
}

Decoded<Document> install(Document settings, const std::filesystem::path& korvo) {
  if (runsKorvo(settings)) return settings;
  const auto statusLine = settings.find(statusLineKey);
  if (statusLine == settings.end() || statusLine->is_null()) {
    settings[statusLineKey] = {{"type", "command"}, {"command", korvoCommand(korvo, std::nullopt)}};
    return settings;
  }
  const auto type = statusLine->is_object() ? statusLine->find("type") : statusLine->end();
  const auto command = statusLine->is_object() ? statusLine->find("command") : statusLine->end();
  if (type == statusLine->end() || *type != "command" || command == statusLine->end() ||
      !command->is_string()) {
    return DecodeFailure{"statusLine is not a command status line"};
  }
  *command = korvoCommand(korvo, command->get<std::string>());
  return settings;
}

Document uninstall(Document settings, const std::optional<Document>& backup) {
  if (!runsKorvo(settings)) return settings;
  if (backup) {
    const auto earlier = backup->find(statusLineKey);
    if (earlier == backup->end()) {
      settings.erase(statusLineKey);
    } else {
      settings[statusLineKey] = *earlier;
    }
    return settings;
  }
  const auto words = commandWords(settings);
  if (words->size() == 4 && (*words)[2] == "--chain") {
    settings[statusLineKey]["command"] = (*words)[3];
  } else {
    settings.erase(statusLineKey);
  }
  return settings;
}

Decoded<Document> parse(std::string_view bytes) {
  // The strict reader refuses what a lenient parse would quietly resolve (a key given twice).
  auto checked = json_reader::parse(bytes);
  if (auto* failure = std::get_if<DecodeFailure>(&checked)) {
    // The parser quotes the text it stopped at; Claude's settings can hold keys and tokens.
    const auto quote = failure->reason.find("; last read:");
    return DecodeFailure{failure->reason.substr(0, quote)};
  }
  if (!std::get<nlohmann::json>(checked).is_object()) {
    return DecodeFailure{"the top level is not an object"};
  }
  return Document::parse(bytes);
}

}  // namespace korvo::claude_settings
