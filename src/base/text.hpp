#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace korvo {

// Looks up a user-visible literal in the message catalogue. No catalogues ship, so the literal
// itself is what shows; `xgettext --keyword=_` (the `pot` target) collects every call.
std::string _(const char* literal);

// "a, b, c": the text of each item (through `text`, which yields something a string appends),
// with `separator` between each two.
template <class Items, class Text = std::identity>
std::string joined(const Items& items, std::string_view separator, Text text = {}) {
  std::string result;
  bool first = true;
  for (const auto& item : items) {
    if (!first) result += separator;
    first = false;
    result += std::invoke(text, item);
  }
  return result;
}

}  // namespace korvo
