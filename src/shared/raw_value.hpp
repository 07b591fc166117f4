#pragma once

#include <optional>
#include <string_view>

namespace korvo {

// Construction of an enumeration from its serialised raw value (exact, case-sensitive match) and
// the list of its cases in declaration order. Each enumeration specialises both in its own header.
template <class Enum>
std::optional<Enum> fromRaw(std::string_view raw);

template <class Enum>
constexpr auto allCases();

}  // namespace korvo
