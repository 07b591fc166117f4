#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace korvo {

// Replaces `target` with `bytes` in one step: a temporary file in the target's own directory (so
// the rename stays on one file system) is written, flushed to disk with permissions `mode`, and
// renamed over the target. A reader sees the old file or the new one, never a part. False on any
// failure, which leaves the target as it was and no temporary file behind.
bool replaceFileAtomically(const std::filesystem::path& target, std::string_view bytes,
                           mode_t mode = 0644);

}  // namespace korvo
