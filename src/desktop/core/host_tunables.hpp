#pragma once

namespace korvo::desktop {

// The host mostly waits; without glibc's per-thread caches of freed blocks it keeps about 150 kB
// less private memory. Tunables are read before main, so `run` sets them for the host when the
// user has not, and the host takes them out of its environment again so that what it starts (a
// link's application) runs as the user would have it.
inline constexpr const char* tunablesVariable = "GLIBC_TUNABLES";
inline constexpr const char* hostTunables = "glibc.malloc.tcache_count=0";

}  // namespace korvo::desktop
