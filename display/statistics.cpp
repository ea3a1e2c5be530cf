#include "display/statistics.h"

#include <cstring>

void Set_OSD_Text(JdecDisplay* display, const char* text) {
  constexpr size_t room = sizeof display->osdText - 1;
  std::memset(display->osdText, 0, sizeof display->osdText);
  for (size_t i = 0; i < room && text[i] != 0; ++i) display->osdText[i] = text[i];
}
