/* Threads that wake the desktop's thread while its windows come and go. */
#pragma once

/** To be called once SDL has started, and the other before it ends. With X11 a thread wakes the one that waits by an event to one
 * of its windows, over a connection of its own; it may arrive when the window is gone, for which Xlib would end the program. */
void Late_Wakes_Forgive();
void Late_Wakes_Forget();
