#pragma once

#include <iosfwd>

namespace korvo {

// Makes korvo's desktop entry the session's handler of korvo:// links when the desktop knows of
// no handler at all (an applications folder whose MIME cache was never updated, say). A handler
// the desktop already has, korvo's or one the user chose, is left as it is; so is a desktop
// that has no korvo entry (korvo run from its build tree). What went wrong goes to `log`.
void claimLinkHandler(std::ostream& log);

}  // namespace korvo
