/* What the viewer lays over the picture: chosen on the command line, changed by keys and clicks. A display starts without
 * overlays; they are applied to each new one. */
#pragma once

#include "apps/velarto/picture.h"
#include "display/context.h"

#include "platform/win32.h"

#include <CLI/CLI.hpp>

#include <array>
#include <optional>

/** As given on the command line. */
struct OverlayOptions {
  bool grid = false, statistics = false;
  std::vector<std::string> cells;    ///< "COLUMN,ROW" each, or the name of a file of such pairs.
  std::vector<int> area, rectangle;  ///< Empty, or x, y, width, height.
  std::string ptz, position;         ///< Picture files.
  std::string motion;                ///< "TEXT,LEFT,TOP,RIGHT,BOTTOM".
};

void Add_Overlay_Options(CLI::App* command, OverlayOptions* options);

struct PlacedRect {
  int x, y, width, height;
};

struct Overlays {
  bool layer = false;  ///< The motion-area layer is shown: grid, cells, area and rectangle.
  bool statistics = false, motion = false, ptz = false;
  std::array<std::array<bool, MotionColumns>, MotionRows> marked = {};
  std::optional<PlacedRect> area;       ///< In picture pixels.
  std::optional<PlacedRect> rectangle;  ///< As JDEC_show_rectangle takes it.
  Picture ptzPicture, positionPicture;  ///< Empty: none.
  std::string caption;
  RECT motionRect = {};
};

/** Reads what the options name. False, with *error, for an unreadable file or an invalid value. */
bool Overlays_Read(const OverlayOptions& options, Overlays* overlays, std::string* error);

/** Applies all of it to the decoder's display. Here and below, nothing shows before the next frame or repaint. */
void Overlays_Apply(const Overlays& overlays, JdecDecoder* decoder);

/* Each turns its overlay on or off. */
void Overlays_Toggle_Layer(Overlays* overlays, JdecDecoder* decoder);
void Overlays_Toggle_Statistics(Overlays* overlays, JdecDecoder* decoder);
void Overlays_Toggle_Motion(Overlays* overlays, JdecDecoder* decoder);
void Overlays_Toggle_Ptz(Overlays* overlays, JdecDecoder* decoder);

/** Moves the rectangle by that much, if there is one; it stays in the picture. */
void Overlays_Move_Rectangle(Overlays* overlays, JdecDecoder* decoder, int x, int y);

/** Marks or clears the cell at a pixel of the picture, and shows the layer. False where there is no cell. */
bool Overlays_Click(Overlays* overlays, JdecDecoder* decoder, int x, int y);
