#pragma once

#include <string>

// Which cursor an X server shows, read through XFixes. Apart from the tests that use it: Xlib's
// macros (None, Status, …) clash with GoogleTest's names.
namespace korvo::desktop_test {

// The name of the cursor the X server on `display` shows now ("pointer"); empty for an unnamed
// one, such as the root window's.
std::string cursorName(const std::string& display);

}  // namespace korvo::desktop_test
