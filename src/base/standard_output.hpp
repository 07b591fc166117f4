#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// Writes `bytes` to standard output now; the reason when they could not all be written
// ("cannot write standard output: No space left on device").
std::optional<std::string> writeStandardOutput(std::string_view bytes);

// Flushes standard output; the reason when anything written to it was lost.
std::optional<std::string> standardOutputFailure();

}  // namespace korvo
