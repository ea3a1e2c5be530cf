#include "apps/velarto/overlays.h"
#include "apps/velarto/picture_file.h"

#include <charconv>
#include <fstream>
#include <sstream>

/** Reads a whole number; nothing else may be in the text. */
static bool Parse_Number(std::string_view text, int* number) {
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return code == std::errc() && end == text.data() + text.size() && !text.empty();
}

/** Reads "COLUMN,ROW" and marks the cell. False for anything else. */
static bool Mark_Cell(std::string_view text, Overlays* overlays) {
  const size_t comma = text.find(',');
  int column = 0, row = 0;
  if (comma == std::string_view::npos || !Parse_Number(text.substr(0, comma), &column) ||
      !Parse_Number(text.substr(comma + 1), &row)) {
    return false;
  }
  if (column < 0 || column >= MotionColumns || row < 0 || row >= MotionRows) return false;
  overlays->marked[static_cast<size_t>(row)][static_cast<size_t>(column)] = true;
  return true;
}

static bool Read_Cells(const std::string& source, Overlays* overlays, std::string* error) {
  if (Mark_Cell(source, overlays)) return true;
  std::ifstream file(source);
  if (!file) {
    *error = source + ": not a cell (COLUMN,ROW up to 19,14) and not a readable file";
    return false;
  }
  for (std::string text; file >> text;) {
    if (Mark_Cell(text, overlays)) continue;
    *error = source + ": \"" + text.substr(0, 40) + "\" is not a cell (COLUMN,ROW up to 19,14)";
    return false;
  }
  return true;
}

/** TEXT,LEFT,TOP,RIGHT,BOTTOM; the text may contain commas. */
static bool Read_Motion(const std::string& source, Overlays* overlays, std::string* error) {
  LONG* const sides[] = {&overlays->motionRect.bottom, &overlays->motionRect.right, &overlays->motionRect.top,
                         &overlays->motionRect.left};
  std::string_view left = source;
  for (LONG* const side : sides) {
    const size_t comma = left.rfind(',');
    int number = 0;
    if (comma == std::string_view::npos || !Parse_Number(left.substr(comma + 1), &number)) {
      *error = "--motion takes TEXT,LEFT,TOP,RIGHT,BOTTOM, not " + source;
      return false;
    }
    *side = number;
    left = left.substr(0, comma);
  }
  overlays->caption = left;
  return true;
}

static PlacedRect Placed(const std::vector<int>& numbers) { return {numbers[0], numbers[1], numbers[2], numbers[3]}; }

bool Overlays_Read(const OverlayOptions& options, Overlays* overlays, std::string* error) {
  *overlays = {};
  for (const std::string& source : options.cells) {
    if (!Read_Cells(source, overlays, error)) return false;
  }
  if (!options.area.empty()) overlays->area = Placed(options.area);
  if (!options.rectangle.empty()) overlays->rectangle = Placed(options.rectangle);
  if (!options.motion.empty() && !Read_Motion(options.motion, overlays, error)) return false;
  if (!options.ptz.empty() && !Picture_Read(options.ptz, &overlays->ptzPicture, error)) return false;
  if (!options.position.empty() && !Picture_Read(options.position, &overlays->positionPicture, error)) return false;
  overlays->layer = options.grid || !options.cells.empty() || overlays->area || overlays->rectangle;
  overlays->statistics = options.statistics;
  overlays->motion = !options.motion.empty();
  overlays->ptz = !options.ptz.empty();
  return true;
}

void Add_Overlay_Options(CLI::App* command, OverlayOptions* options) {
  constexpr const char* group = "Overlays";
  command->add_flag("--grid", options->grid, "Show the grid of the motion detection")->group(group);
  command
      ->add_option("--cells", options->cells, "Cells of the grid to mark: COLUMN,ROW each, up to 19,14, or a file of such pairs")
      ->group(group);
  command
      ->add_option("--area", options->area, "X,Y,WIDTH,HEIGHT in picture pixels: dim everything around it, instead of the grid")
      ->delimiter(',')
      ->expected(4)
      ->group(group);
  command
      ->add_option("--rectangle", options->rectangle,
                   "X,Y,WIDTH,HEIGHT: a rectangle that the arrow keys move. In picture pixels; at 640x480 as for half the size, "
                   "in other pictures 640 wide as for half the width")
      ->delimiter(',')
      ->expected(4)
      ->group(group);
  command->add_option("--ptz", options->ptz, "Picture for the lower right corner, black is transparent; hidden by the grid")
      ->group(group);
  command
      ->add_option("--position", options->position,
                   "Picture over the whole video, black is transparent; hidden by the grid and the PTZ picture")
      ->group(group);
  command->add_option("--motion", options->motion, "TEXT,LEFT,TOP,RIGHT,BOTTOM: caption and rectangle of the motion search")
      ->group(group);
  command->add_flag("--statistics", options->statistics, "Show frame rate and bit rate")->group(group);
}
