#pragma once

#include <string>
#include <string_view>

namespace korvo {

// `text` as it may stand in a one-line message: valid UTF-8 is kept as it is, while control
// characters and bytes that are not UTF-8 become escapes ("\n", "\t", "\x1B", "\xFF"). Names from
// outside (file names, sensor labels, links) go through it, so a message stays one line and never
// carries bytes a terminal or a JSON document cannot take.
std::string displayText(std::string_view text);

// Whether `text` is valid UTF-8 throughout, as a JSON document needs its strings to be.
bool isUtf8(std::string_view text);

}  // namespace korvo
