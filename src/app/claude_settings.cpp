#include "app/claude_settings.hpp"

#include <cstdlib>
#include <system_error>

#include "app/json_text.hpp"
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

// True when `program`, as the shell would find it, is the executable `korvo`, or is named korvo.
bool isKorvo(const std::string& program, const std::filesystem::path& korvo) {
  if (std::filesystem::path(program).filename() == "korvo") return true;
  std::error_code error;
  if (program.find('/') != std::string::npos) {
    return std::filesystem::equivalent(program, korvo, error);
  }
  const char* path = std::getenv("PATH");
  std::string_view directories = path != nullptr ? path : "";
  while (!directories.empty()) {
    const auto colon = directories.find(':');
    const std::string directory(directories.substr(0, colon));
    directories = colon == std::string_view::npos ? "" : directories.substr(colon + 1);
    if (std::filesystem::equivalent(std::filesystem::path(directory) / program, korvo, error)) {
      return true;
    }
  }
  return false;
}

// The settings text with its status line's command (which is there) set to `command`.
std::string withCommand(std::string_view bytes, const std::string& command) {
  const auto statusLine = json_text::memberValue(bytes, json_text::topObject(bytes), statusLineKey);
  const auto span = json_text::memberValue(bytes, statusLine->begin, "command");
  return std::string(bytes).replace(span->begin, span->end - span->begin,
                                    nlohmann::json(command).dump());
}

}  // namespace

std::string korvoCommand(const std::filesystem::path& korvo,
                         const std::optional<std::string>& chain) {
  std::string command = shell_words::quote(korvo.string()) + " claude-statusline";
  if (chain) command += " --chain " + shell_words::quote(*chain);
  return command;
}

bool runsKorvo(const Document& settings, const std::filesystem::path& korvo) {
  const auto words = commandWords(settings);
  return words && words->size() >= 2 && (*words)[1] == "claude-statusline" &&
         isKorvo((*words)[0], korvo);
}

Decoded<std::string> install(std::string_view bytes, const std::filesystem::path& korvo) {
  auto parsed = parse(bytes);
  if (auto* failure = std::get_if<DecodeFailure>(&parsed)) return *failure;
  const Document& settings = std::get<Document>(parsed);
  if (runsKorvo(settings, korvo)) return std::string(bytes);
  const auto statusLine = settings.find(statusLineKey);
  if (statusLine == settings.end() || statusLine->is_null()) {
    const Document line = {{"type", "command"}, {"command", korvoCommand(korvo, std::nullopt)}};
    return json_text::withMember(bytes, statusLineKey, line.dump());
  }
  const auto type = statusLine->is_object() ? statusLine->find("type") : statusLine->end();
  const auto command = statusLine->is_object() ? statusLine->find("command") : statusLine->end();
  if (type == statusLine->end() || *type != "command" || command == statusLine->end() ||
      !command->is_string()) {
    return DecodeFailure{"statusLine is not a command status line"};
  }
  return withCommand(bytes, korvoCommand(korvo, command->get<std::string>()));
}

std::string uninstall(std::string_view bytes, const std::optional<std::string>& backup,
                      const std::filesystem::path& korvo) {
  const Document settings = Document::parse(bytes);
  if (!runsKorvo(settings, korvo)) return std::string(bytes);
  if (backup) {
    const auto earlier =
        json_text::memberValue(*backup, json_text::topObject(*backup), statusLineKey);
    if (!earlier) return json_text::withoutMember(bytes, statusLineKey);
    return json_text::withMember(bytes, statusLineKey,
                                 backup->substr(earlier->begin, earlier->end - earlier->begin));
  }
  const auto words = commandWords(settings);
  if (words->size() == 4 && (*words)[2] == "--chain") return withCommand(bytes, (*words)[3]);
  return json_text::withoutMember(bytes, statusLineKey);
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
