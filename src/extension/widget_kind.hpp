#pragma once

#include <string>
#include <string_view>

#include "base/words.hpp"

namespace korvo {

// The bundle's four widgets.
enum class WidgetKind { memory, awake, usage, temperature };

// The last word of each kind, in bundle order, as command lines and placements write them.
inline constexpr Words<WidgetKind, 4> widgetKindWords{{
    {"memory", WidgetKind::memory},
    {"awake", WidgetKind::awake},
    {"usage", WidgetKind::usage},
    {"temperature", WidgetKind::temperature},
}};

// "memory", "awake", "usage", "temperature".
std::string_view kindWord(WidgetKind kind);
// "com.tessmoor.Korvo.memory": the application identifier, a dot and the kind's word.
std::string fullKind(WidgetKind kind);

}  // namespace korvo
