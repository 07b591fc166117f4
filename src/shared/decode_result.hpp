#pragma once

#include <string>
#include <variant>

namespace korvo {

// Why bytes could not be decoded, in words for a diagnostic ("missing key codex.isRefreshing").
struct DecodeFailure {
  std::string reason;  // one line naming the cause and, where there is one, its path or offset

  friend bool operator==(const DecodeFailure&, const DecodeFailure&) = default;
};

// A decoded value or the reason there is none.
template <class T>
using Decoded = std::variant<T, DecodeFailure>;

}  // namespace korvo
