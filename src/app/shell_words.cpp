#include "app/shell_words.hpp"

#include <algorithm>
#include <utility>

namespace korvo::shell_words {
namespace {

bool isSafe(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || c == '.' || c == '/' || c == ',' || c == ':' || c == '=' || c == '+' ||
         c == '@';
}

}  // namespace

std::string quote(std::string_view word) {
  if (!word.empty() && std::all_of(word.begin(), word.end(), isSafe)) return std::string(word);
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

namespace {

// Appends the double-quoted text opening at `line[i]` to `word`, as the shell reads it (a backslash
// escapes only " \ $ and `), leaving `i` at its closing quote; false when it is never closed.
bool appendDoubleQuoted(std::string_view line, std::size_t& i, std::string& word) {
  for (++i;; ++i) {
    if (i >= line.size()) return false;
    if (line[i] == '"') return true;
    if (line[i] == '\\' && i + 1 < line.size() &&
        std::string_view("\"\\$`").find(line[i + 1]) != std::string_view::npos) {
      ++i;
    }
    word += line[i];
  }
}

}  // namespace

std::optional<std::vector<std::string>> split(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == ' ' || c == '\t' || c == '\n') {
      if (inWord) words.push_back(std::exchange(word, {}));
      inWord = false;
      continue;
    }
    inWord = true;
    if (c == '\'') {
      const auto end = line.find('\'', i + 1);
      if (end == std::string_view::npos) return std::nullopt;
      word.append(line.substr(i + 1, end - i - 1));
      i = end;
    } else if (c == '"') {
      if (!appendDoubleQuoted(line, i, word)) return std::nullopt;
    } else if (c == '\\' && i + 1 < line.size()) {
      word += line[++i];
    } else {
      word += c;
    }
  }
  if (inWord) words.push_back(std::move(word));
  return words;
}

}  // namespace korvo::shell_words
