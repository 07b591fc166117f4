#include "desktop/heap_trim.hpp"

#include <glib.h>
#include <malloc.h>

namespace korvo::desktop {
namespace {

guint pending = 0;

gboolean trim(gpointer) {
  pending = 0;
  malloc_trim(0);
  return G_SOURCE_REMOVE;
}

}  // namespace

void trimHeapWhenIdle() {
  // Below the redraw priority, so it runs in the same wake-up once every card has painted.
  if (pending == 0) pending = g_idle_add_full(G_PRIORITY_LOW, trim, nullptr, nullptr);
}

}  // namespace korvo::desktop
