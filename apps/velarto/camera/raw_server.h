/* The camera's stream over plain TCP: whoever connects gets it. */
#pragma once

#include "apps/velarto/camera/hub.h"
#include "apps/velarto/camera/listener.h"

/** Starts to serve on that port. The hub must live until the listener has been stopped. */
void Raw_Serve(const std::shared_ptr<Listener>& listener, Hub* hub);
