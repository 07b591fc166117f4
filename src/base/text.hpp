#pragma once

#include <string>

namespace korvo {

// Looks up a user-visible literal in the message catalogue. No catalogues ship, so the literal
// itself is what shows; `xgettext --keyword=_` (the `pot` target) collects every call.
std::string _(const char* literal);

}  // namespace korvo
