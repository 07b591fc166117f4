#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "shared/decode_result.hpp"

namespace korvo {

// The bundle-information key naming the app group shared by the host application and the widgets.
inline constexpr const char* appGroupInfoKey = "KorvoAppGroup";

// Where the bundle information Info.json is looked for: $KORVO_BUNDLE_INFO when set (and then
// only there), else <executable dir>/../share/korvo-widgets/Info.json when that file exists (or
// <executable dir>/../../share/… for a program installed in libexec/korvo-widgets/), else the
// build tree's copy.
std::filesystem::path bundleInfoPath();

// The non-empty string value of KorvoAppGroup in the bundle information, or why there is none.
std::variant<std::string, DecodeFailure> appGroupIdentifier();

// ${XDG_DATA_HOME:-$HOME/.local/share}/app-groups/<group>/, or why there is none: no absolute
// base directory, or a group that is not one safe path component.
std::variant<std::filesystem::path, DecodeFailure> groupContainer(std::string_view group);

}  // namespace korvo
