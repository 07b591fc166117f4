#pragma once

#include <filesystem>
#include <string>

#include "support/desktop_harness.hpp"

// What the tests of korvo's dashboard give it, so each test says only what differs.
namespace korvo::dashboard_test {

using desktop_test::Environment;

// korvo with its home, configuration, data and state under `folder` (created), the system's
// data for GTK, the built programs first on PATH, the X server `display` and the session bus
// `busAddress`, no system bus, the fixture machine `sysroot`, and the dashboard's state written
// to `folder`/dashboard.json.
Environment dashboardEnvironment(const std::filesystem::path& folder, const std::string& display,
                                 const std::string& busAddress,
                                 const std::filesystem::path& sysroot = KORVO_FIXTURES_DIR
                                 "/proc/desktop-zram");

// Installs korvo's desktop entry into `folder`'s data and makes it the default korvo://
// handler, as installing the package does.
void registerKorvoAsHandler(const std::filesystem::path& folder);

}  // namespace korvo::dashboard_test
