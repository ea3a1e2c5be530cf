#include "platform/sdl/late_wakes.h"

#include <X11/Xlib.h>
#include <X11/Xproto.h>

static XErrorHandler handlerBefore = nullptr;

static int On_X_Error(Display* display, XErrorEvent* error) {
  if (error->request_code == X_SendEvent && error->error_code == BadWindow) return 0;
  return handlerBefore(display, error);
}

void Late_Wakes_Forgive() { handlerBefore = XSetErrorHandler(On_X_Error); }

void Late_Wakes_Forget() { XSetErrorHandler(handlerBefore); }
