#include "apps/velarto/camera/raw_server.h"

static void Send_Stream(Hub* hub, int socket) {
  HubWatch watch(hub);
  while (const HubFramePtr frame = Hub_Next(&watch)) {
    if (!Connection_Write(socket, Hub_Stream_Bytes(*frame))) return;
  }
}

void Raw_Serve(const std::shared_ptr<Listener>& listener, Hub* hub) {
  Listener_Serve(
      listener, [hub](int socket) { Send_Stream(hub, socket); }, "");
}
