#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvo::shell_words {

// `word` as one POSIX shell word: unchanged when it holds only safe characters, else in single
// quotes (a quote inside becomes '\'').
std::string quote(std::string_view word);

// The words of a simple command line as the shell splits them: blanks separate, single quotes,
// double quotes and backslashes as the shell reads them. None for an unterminated quote. Enough to
// recognise a command line written by quote(); expansions are left as they stand.
std::optional<std::vector<std::string>> split(std::string_view line);

}  // namespace korvo::shell_words
