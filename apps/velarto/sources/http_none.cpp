#include "apps/velarto/sources/http_transfer.h"

HttpTransfer* Transfer_Open(const Url&, const std::atomic<bool>*, std::string* error) {
  *error = "http:// and https:// can't be read on this platform; use the camera's tcp:// address";
  return nullptr;
}

int64_t Transfer_Read(HttpTransfer*, std::span<uint8_t>, std::string*) { return 0; }

std::string Transfer_Type(const HttpTransfer&) { return {}; }

bool Transfer_Whole(const HttpTransfer&) { return false; }

void Transfer_Close(HttpTransfer*) {}
