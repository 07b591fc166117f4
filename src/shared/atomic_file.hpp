#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace korvo {

// Replaces `target` with `bytes` in one step: a temporary file in the target's own directory (so
// the rename stays on one file system) is written, flushed to disk with permissions `mode`, and
// renamed over the target. A reader sees the old file or the new one, never a part. False on any
// failure, with errno saying why, which leaves the target as it was and no temporary file behind.
bool replaceFileAtomically(const std::filesystem::path& target, std::string_view bytes,
                           mode_t mode = 0644);

// Removes the temporary files that replaceFileAtomically leaves beside `target` when its writer
// is killed before the rename. Only for a writer that knows no other save of `target` is under
// way (it holds the lock all writers take).
void removeLeftoverTemporaries(const std::filesystem::path& target);

// Creates `directory` and its missing parents, each with permissions 0700 whatever the umask, so
// that no other user can put files into them or swap what is there; folders already present are
// left as they are. False, with errno saying why, when one cannot be made or a part of the path
// is not a folder.
bool createPrivateDirectories(const std::filesystem::path& directory);

}  // namespace korvo
