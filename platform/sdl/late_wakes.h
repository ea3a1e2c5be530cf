/* An error of X11 that is none: a wake for a window that is gone. */
#pragma once

/** SDL on X11 wakes a waiting thread by an event to one of its windows, over another connection. The event may arrive when the
 * window is gone, and Xlib would end the program. The first function, called once SDL has started, has that error ignored; the
 * second one, called before SDL ends, undoes it. */
void Late_Wakes_Forgive();
void Late_Wakes_Forget();
