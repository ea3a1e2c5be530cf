/* The camera for HTTP clients: a page, stills, and the live stream in two dresses. */
#pragma once

#include "apps/velarto/camera/hub.h"
#include "apps/velarto/camera/listener.h"

/** Serves the hub's frames; ended by Http_Stop. */
struct HttpServer;

/** Starts to serve at that port. The hub must outlive it. */
std::shared_ptr<HttpServer> Http_Serve(const std::shared_ptr<Listener>& listener, Hub* hub);

/** Has responses that never end end; after that the listener can be stopped. */
void Http_Stop(HttpServer* server);
