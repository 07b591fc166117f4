#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/text.hpp"

// An enumeration's words, written once as a table of {word, value} in the order messages list
// them; every conversion either way, and every list of valid words, reads that table.
namespace korvo {

template <class Value>
struct Word {
  std::string_view word;
  Value value;
};

template <class Value, std::size_t count>
using Words = std::array<Word<Value>, count>;

// The word for `value` in `words` (empty when the table lacks it).
template <class Value, std::size_t count>
constexpr std::string_view wordFor(const Words<Value, count>& words, Value value) {
  for (const auto& entry : words) {
    if (entry.value == value) return entry.word;
  }
  return {};
}

// The value `word` names in `words` (exact, case-sensitive); none for any other text.
template <class Value, std::size_t count>
constexpr std::optional<Value> valueNamed(const Words<Value, count>& words, std::string_view word) {
  for (const auto& entry : words) {
    if (entry.word == word) return entry.value;
  }
  return std::nullopt;
}

// "small, medium": every word of `words`, in order, for messages.
template <class Value, std::size_t count>
std::string wordList(const Words<Value, count>& words) {
  return joined(words, ", ", &Word<Value>::word);
}

// Every value of `words`, in order.
template <class Value, std::size_t count>
constexpr std::array<Value, count> valuesOf(const Words<Value, count>& words) {
  std::array<Value, count> values{};
  for (std::size_t index = 0; index < count; ++index) values[index] = words[index].value;
  return values;
}

}  // namespace korvo
