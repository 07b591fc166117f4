#pragma once

namespace korvo {

// Loads one of the program's own modules and returns the address of `entryPoint` in it. The module
// is looked for beside an installed program (`installed` is its path under the prefix; bin/ is one
// level below it, the desktop host in libexec/korvo-widgets/ two), else at `built`, where the build
// tree put it. A module that cannot be loaded is named on standard error with the reason, and
// none is returned.
void* loadModuleEntry(const char* installed, const char* built, const char* entryPoint);

}  // namespace korvo
