#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Edits of one member in the text of a JSON object that keep every other byte as written: the
// user's formatting, key order and numbers (a big integer, -0) survive, which a parse and dump
// would not keep. Every function takes text that is one valid JSON object (a UTF-8 byte-order
// mark and whitespace around it allowed).
namespace korvo::json_text {

// Where a value lies in the text: [begin, end).
struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;

  friend bool operator==(const Span&, const Span&) = default;
};

// The value of member `key` of the object whose text starts at `object` (its '{'); none when the
// object has no such member.
std::optional<Span> memberValue(std::string_view text, std::size_t object, std::string_view key);

// Where the top-level object starts.
std::size_t topObject(std::string_view text);

// `text` with the top-level member `key` set to `value` (JSON text): its value replaced when it
// is there, else added as the last member, spaced as the first one is.
std::string withMember(std::string_view text, std::string_view key, std::string_view value);

// `text` without the top-level member `key`; the exact undoing of withMember adding it.
std::string withoutMember(std::string_view text, std::string_view key);

}  // namespace korvo::json_text
