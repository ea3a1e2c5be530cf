/* The camera's stream over plain TCP: whoever connects gets it. */
#pragma once

#include "apps/velarto/camera/hub.h"
#include "apps/velarto/camera/listener.h"

/** Starts to serve at that port. The hub must outlive the listener's stop. */
void Raw_Serve(const std::shared_ptr<Listener>& listener, Hub* hub);
