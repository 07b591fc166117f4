#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "shared/decode_result.hpp"

namespace korvo {

// The whole content of a regular file of at most `maxBytes`, read without ever blocking on a FIFO
// and without following it into a device; the reason otherwise (missing, not a regular file, too
// large, unreadable).
Decoded<std::string> readRegularFile(const std::filesystem::path& path, std::size_t maxBytes);

}  // namespace korvo
