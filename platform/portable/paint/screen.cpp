#include "platform/portable/paint/screen.h"

ScreenState screenState;

ScreenSetup Screen_Of_Depth(int32_t bits) {
  ScreenSetup setup;
  setup.bits = bits == 15 ? 16 : bits;
  if (bits == 15) setup.redMask = 0x7C00, setup.greenMask = 0x3E0, setup.blueMask = 0x1F;
  if (bits == 16) setup.redMask = 0xF800, setup.greenMask = 0x7E0, setup.blueMask = 0x1F;
  return setup;
}

ColorFormat Screen_Format() {
  const ScreenSetup& setup = screenState.setup;
  const bool known = setup.bits == 8 || setup.bits == 16 || setup.bits == 24 || setup.bits == 32;
  return {screenState.on && known ? setup.bits : 0, setup.redMask, setup.greenMask, setup.blueMask, screenState.colors};
}
