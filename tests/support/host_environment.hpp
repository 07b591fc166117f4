#pragma once

#include <filesystem>

#include "support/desktop_harness.hpp"

// What every test of the desktop host gives it, so each test says only what differs.
namespace korvo::desktop_test {

// The host's own home, configuration and data under `folder` (created), no system-wide URL
// handlers, a fixed locale and time zone, the bundle information from the source tree and a
// fixture machine; then `extra` (the display, the bus, debugging), which wins.
Environment hostEnvironment(const std::filesystem::path& folder, const Environment& extra);

// Makes the recording handler (tests/support/handler) the korvo:// handler of the configuration
// and data under `folder`; it appends each URL it is given to $KORVO_TEST_URL_LOG.
void registerUrlRecorder(const std::filesystem::path& folder);

}  // namespace korvo::desktop_test
