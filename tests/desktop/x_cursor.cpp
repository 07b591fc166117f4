#include "x_cursor.hpp"

#include <X11/Xlib.h>
#include <X11/extensions/Xfixes.h>

#include <memory>

namespace korvo::desktop_test {

std::string cursorName(const std::string& display) {
  const std::unique_ptr<Display, int (*)(Display*)> connection(XOpenDisplay(display.c_str()),
                                                               XCloseDisplay);
  if (!connection) return "(no display)";
  XFixesCursorImage* image = XFixesGetCursorImage(connection.get());
  if (image == nullptr) return "(no cursor)";
  std::string name = image->name != nullptr ? image->name : "";
  XFree(image);
  return name;
}

}  // namespace korvo::desktop_test
