#include "platform/portable/paint/canvas.h"

#include "platform/portable/window/window_record.h"

Canvas Canvas_Of(HWND window) {
  if (!Window_Find(window) || !Window_Shows(window)) return {};
  return {Window_View(window), Window_Origin(window)};
}

Canvas Canvas_At(LONG x, LONG y) {
  for (size_t i = allWindows.size(); i-- > 0;) {
    const Canvas canvas = Canvas_Of(allWindows[i]);
    if (Pixel_At(canvas.view, x - canvas.origin.x, y - canvas.origin.y)) return canvas;
  }
  return {};
}

std::vector<Canvas> All_Canvases() {
  std::vector<Canvas> canvases;
  for (HWND window : allWindows) {
    const Canvas canvas = Canvas_Of(window);
    if (canvas.view.pixels) canvases.push_back(canvas);
  }
  return canvases;
}

void Canvas_Changed(HWND window) {
  if (Window_Find(window)) Desktop_Pixels_Changed(window);
}

void All_Canvases_Changed() {
  for (HWND window : allWindows) Desktop_Pixels_Changed(window);
}
