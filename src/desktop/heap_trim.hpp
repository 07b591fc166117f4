#pragma once

namespace korvo::desktop {

// Gives the heap's free pages back to the system once the main loop has nothing else to do:
// after start-up and after each repaint the host waits a minute or more holding only what it
// shows. Calls made before that moment share one trim.
void trimHeapWhenIdle();

}  // namespace korvo::desktop
