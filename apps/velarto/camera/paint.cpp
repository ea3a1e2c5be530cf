#include "apps/velarto/camera/paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

/** Lines of samples a row of pixels; within a line the coverage is exact. */
static constexpr int SampleLines = 4;

/** A row of pixels' coverage, for the columns that the shape can touch. */
struct Coverage {
  int32_t left = 0;
  std::vector<float> parts;
};

/** Adds a span of one sample line; from and to lie within the coverage's columns. */
static void Add_Span(Coverage* coverage, float from, float to) {
  static constexpr float Share = 1.0F / SampleLines;
  from -= static_cast<float>(coverage->left);
  to -= static_cast<float>(coverage->left);
  const auto first = static_cast<size_t>(from), last = static_cast<size_t>(to);
  if (first == last) {
    coverage->parts[first] += (to - from) * Share;
    return;
  }
  coverage->parts[first] += (static_cast<float>(first + 1) - from) * Share;
  for (size_t i = first + 1; i < last; ++i) coverage->parts[i] += Share;
  coverage->parts[last] += (to - static_cast<float>(last)) * Share;
}

static void Sample_Line(std::span<const Point> points, float y, float least, float most, std::vector<float>* crossings,
                        Coverage* coverage) {
  crossings->clear();
  for (size_t i = 0; i < points.size(); ++i) {
    const Point a = points[i], b = points[(i + 1) % points.size()];
    if ((a.y <= y) == (b.y <= y)) continue;
    crossings->push_back(std::clamp(a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y), least, most));
  }
  std::ranges::sort(*crossings);
  for (size_t i = 0; i + 1 < crossings->size(); i += 2) Add_Span(coverage, (*crossings)[i], (*crossings)[i + 1]);
}

static void Blend_Row(Picture* picture, int32_t y, const Coverage& coverage, const Brush& brush) {
  uint8_t* pixel = Paint_At(picture, coverage.left, y);
  const size_t start = static_cast<size_t>(y) * static_cast<size_t>(picture->width) + static_cast<size_t>(coverage.left);
  for (size_t i = 0; i + 1 < coverage.parts.size(); ++i, pixel += 3) {
    float part = std::min(coverage.parts[i], 1.0F) * brush.opacity;
    if (part <= 0) continue;
    if (brush.mask) part *= static_cast<float>((*brush.mask)[start + i]) / 255;
    Paint_Pixel(pixel, brush.color, part);
  }
}

void Paint_Polygon(Picture* picture, std::span<const Point> points, const Brush& brush) {
  if (points.size() < 3) return;
  const auto [west, east] = std::ranges::minmax(points, {}, &Point::x);
  const auto [north, south] = std::ranges::minmax(points, {}, &Point::y);
  const float least = std::max(west.x, 0.0F), most = std::min(east.x, static_cast<float>(picture->width));
  const float top = std::max(north.y, 0.0F), bottom = std::min(south.y, static_cast<float>(picture->height));
  if (least >= most || top >= bottom) return;
  Coverage coverage = {.left = static_cast<int32_t>(least), .parts = {}};
  // One column more, for spans that end on the last one's edge; it is not painted.
  const size_t columns = static_cast<size_t>(std::ceil(most)) - static_cast<size_t>(coverage.left) + 1;
  std::vector<float> crossings;
  for (auto y = static_cast<int32_t>(top); static_cast<float>(y) < bottom; ++y) {
    coverage.parts.assign(columns, 0.0F);
    for (int line = 0; line < SampleLines; ++line) {
      const float at = static_cast<float>(y) + (static_cast<float>(line) + 0.5F) / SampleLines;
      Sample_Line(points, at, least, most, &crossings, &coverage);
    }
    Blend_Row(picture, y, coverage, brush);
  }
}

void Paint_Ellipse(Picture* picture, Point center, float radiusX, float radiusY, const Brush& brush) {
  static constexpr size_t MostCorners = 96;
  const size_t corners = std::clamp<size_t>(static_cast<size_t>(std::max(radiusX, radiusY)) + 10, 12, MostCorners);
  std::array<Point, MostCorners> points;
  for (size_t i = 0; i < corners; ++i) {
    const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(corners);
    points[i] = {center.x + radiusX * std::cos(angle), center.y + radiusY * std::sin(angle)};
  }
  Paint_Polygon(picture, std::span(points).first(corners), brush);
}

void Paint_Box(Picture* picture, float left, float top, float right, float bottom, const Brush& brush) {
  const Point points[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
  Paint_Polygon(picture, points, brush);
}

void Paint_Line(Picture* picture, Point from, Point to, float thickness, const Brush& brush) {
  const float length = std::hypot(to.x - from.x, to.y - from.y);
  if (length <= 0) return;
  const float x = (to.y - from.y) / length * thickness / 2, y = (from.x - to.x) / length * thickness / 2;
  const Point points[] = {{from.x + x, from.y + y}, {to.x + x, to.y + y}, {to.x - x, to.y - y}, {from.x - x, from.y - y}};
  Paint_Polygon(picture, points, brush);
}
