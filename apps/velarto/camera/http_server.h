/* The camera for HTTP clients: a page, stills, and the live stream as it is and as multipart JPEG. */
#pragma once

#include "apps/velarto/camera/hub.h"
#include "apps/velarto/camera/listener.h"

/** Serves the hub's frames until Http_Stop. */
struct HttpServer;

/** Starts to serve on that port. The hub must outlive it. */
std::shared_ptr<HttpServer> Http_Serve(const std::shared_ptr<Listener>& listener, Hub* hub);

/** Ends the endless responses; after that the listener can be stopped. */
void Http_Stop(HttpServer* server);
