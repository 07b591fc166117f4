#include <glib-unix.h>

#include <clocale>
#include <csignal>
#include <iostream>

#include "app/publish_loop.hpp"

namespace {

gboolean quit(gpointer loop) {
  g_main_loop_quit(static_cast<GMainLoop*>(loop));
  return G_SOURCE_CONTINUE;
}

}  // namespace

// korvo-service: what `korvo service` runs. It publishes and otherwise sleeps until a timer or a
// settings change wakes it; SIGTERM and SIGINT end it.
int main() {
  std::setlocale(LC_ALL, "");
  GMainLoop* mainLoop = g_main_loop_new(nullptr, FALSE);
  g_unix_signal_add(SIGTERM, &quit, mainLoop);
  g_unix_signal_add(SIGINT, &quit, mainLoop);
  {
    korvo::PublishLoop publishing(std::cerr);
    publishing.start();
    g_main_loop_run(mainLoop);
  }
  g_main_loop_unref(mainLoop);
  return 0;
}
