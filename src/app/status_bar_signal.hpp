#pragma once

namespace korvo::status_bar {

// Sends SIGRTMIN+`offset` to every waybar process of this user, so that its korvo modules
// configured with `"signal": offset` run again at once; 0 sends nothing. Returns how many
// processes were signalled.
int refresh(int offset);

}  // namespace korvo::status_bar
