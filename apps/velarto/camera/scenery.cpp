#include "apps/velarto/camera/scenery.h"

#include <algorithm>
#include <cmath>
#include <numbers>

static constexpr float Pi = std::numbers::pi_v<float>;

float Scenery_Unit(const Picture& picture) {
  return std::min(static_cast<float>(picture.height), static_cast<float>(picture.width) * 0.75F);
}

Point Lighthouse_Lamp(const Picture& picture) {
  return {LighthousePlace * static_cast<float>(picture.width),
          Horizon * static_cast<float>(picture.height) - 0.21F * Scenery_Unit(picture)};
}

Point Pole_Top(const Picture& picture) {
  return {PolePlace * static_cast<float>(picture.width),
          0.745F * static_cast<float>(picture.height) - 0.42F * Scenery_Unit(picture)};
}

Color Color_Lit(const Color& color, const Light& light) {
  return {color.red * light.tint.red / 255, color.green * light.tint.green / 255, color.blue * light.tint.blue / 255};
}

/** The state that all drawing operations need. */
struct Site {
  Picture* picture;
  const Light& light;
  float width, height, unit;
};

static Brush Lit(const Site& site, const Color& color, float opacity = 1) { return {Color_Lit(color, site.light), opacity}; }

/** Rows from `top` to `bottom` (parts of the height), from one colour to the other. */
static void Draw_Gradient(const Site& site, float top, float bottom, const Color& upper, const Color& lower) {
  const auto first = static_cast<int32_t>(std::lround(top * site.height)),
             end = static_cast<int32_t>(std::lround(bottom * site.height));
  for (int32_t y = first; y < end; ++y) {
    const Color color = Color_Mix(upper, lower, static_cast<float>(y - first) / static_cast<float>(end - first));
    uint8_t* pixel = Paint_At(site.picture, 0, y);
    for (int32_t x = 0; x < site.picture->width; ++x, pixel += 3) Paint_Pixel(pixel, color, 1);
  }
}

static void Draw_Stars(const Site& site) {
  if (site.light.skyTop.blue > 40) return;
  uint32_t state = 7;
  const auto next = [&state] { return static_cast<float>((state = state * 1664525 + 1013904223) >> 8) / (1 << 24); };
  for (int i = 0; i < 90; ++i) {
    const Point place = {next() * site.width, next() * next() * Horizon * site.height};
    const float radius = site.unit * (0.0012F + 0.0014F * next());
    Paint_Ellipse(site.picture, place, radius, radius, {{255, 250, 235}, 0.4F + 0.6F * next()});
  }
}

/** A ridge: `base` and `swing` as parts of the unit above the horizon. */
static void Draw_Hills(const Site& site, float base, float swing, float phase, const Color& color) {
  std::vector<Point> points = {{site.width, Horizon * site.height + 1}, {0, Horizon * site.height + 1}};
  for (int i = 0; i <= 100; ++i) {
    const float x = static_cast<float>(i) / 100;
    const float wave = std::sin(x * 5 + phase) + 0.5F * std::sin(x * 11 + 2 * phase) + 0.2F * std::sin(x * 29 + 3 * phase);
    points.push_back({x * site.width, Horizon * site.height - site.unit * (base + swing * wave)});
  }
  Paint_Polygon(site.picture, points, {color, 1});
}

static void Draw_Lighthouse(const Site& site) {
  const float x = LighthousePlace * site.width, sea = Horizon * site.height, u = site.unit;
  const Point lamp = Lighthouse_Lamp(*site.picture);
  const Point rock[] = {{x - 0.24F * u, sea + 0.012F * u},
                        {x - 0.1F * u, sea - 0.03F * u},
                        {x, sea - 0.045F * u},
                        {x + 0.12F * u, sea - 0.035F * u},
                        {x + 0.3F * u, sea + 0.012F * u}};
  Paint_Polygon(site.picture, rock, Lit(site, {96, 92, 84}));
  const auto half = [&](float y) { return (0.014F + 0.014F * (y - lamp.y) / (sea - lamp.y)) * u; };
  for (int i = 0; i < 5; ++i) {
    const float top = lamp.y + (sea - 0.03F * u - lamp.y) * static_cast<float>(i) / 5;
    const float bottom = lamp.y + (sea - 0.03F * u - lamp.y) * static_cast<float>(i + 1) / 5;
    const Point ring[] = {{x - half(top), top}, {x + half(top), top}, {x + half(bottom), bottom}, {x - half(bottom), bottom}};
    Paint_Polygon(site.picture, ring, Lit(site, i % 2 ? Color{236, 236, 232} : Color{200, 44, 40}));
  }
  Paint_Box(site.picture, x - 0.019F * u, lamp.y - 0.002F * u, x + 0.019F * u, lamp.y + 0.005F * u, Lit(site, {50, 50, 56}));
  Paint_Box(site.picture, x - 0.01F * u, lamp.y - 0.022F * u, x + 0.01F * u, lamp.y,
            site.light.lamps > 0 ? Brush{{255, 240, 180}, 1} : Lit(site, {190, 210, 220}));
  const Point roof[] = {{x - 0.015F * u, lamp.y - 0.021F * u}, {x, lamp.y - 0.042F * u}, {x + 0.015F * u, lamp.y - 0.021F * u}};
  Paint_Polygon(site.picture, roof, Lit(site, {180, 40, 36}));
}

static void Draw_House(const Site& site, int index, float left, float width, float height, const Color& wall) {
  const float ground = Horizon * site.height + 0.03F * site.unit, u = site.unit, top = ground - height * u;
  const float right = left + width * u;
  Paint_Box(site.picture, left, top, right, ground, Lit(site, wall));
  const Point roof[] = {{left - 0.008F * u, top + 1}, {(left + right) / 2, top - 0.05F * u}, {right + 0.008F * u, top + 1}};
  Paint_Polygon(site.picture, roof, Lit(site, {146, 66, 48}));
  const float step = width * u / 3, pane = 0.014F * u;
  for (int i = 0; i < 6; ++i) {
    const int column = i % 3, row = i / 3;
    const float x = left + step * (static_cast<float>(column) + 0.5F), y = top + (0.03F + 0.045F * static_cast<float>(row)) * u;
    if (y + pane > ground) continue;
    const bool lit = site.light.lamps > 0 && (i + index) % 3 != 0;
    Paint_Box(site.picture, x - pane * 0.7F, y - pane, x + pane * 0.7F, y + pane,
              lit ? Brush{{255, 214, 120}, 1} : Lit(site, {70, 92, 112}));
  }
}

static void Draw_Village(const Site& site) {
  static constexpr Color walls[] = {{232, 214, 180}, {214, 120, 96}, {238, 232, 220}, {150, 180, 196}, {230, 196, 120}};
  const float u = site.unit, sea = Horizon * site.height;
  const Point ground[] = {
      {0, sea - 0.035F * u}, {0.5F * u, sea - 0.01F * u}, {0.72F * u, sea + 0.03F * u}, {0, sea + 0.045F * u}};
  Paint_Polygon(site.picture, ground, Lit(site, {104, 122, 78}));
  for (int i = 0; i < 5; ++i) {
    const float place = static_cast<float>(i);
    Draw_House(site, i, (0.02F + 0.115F * place) * u, 0.1F, 0.12F + 0.03F * std::sin(place * 2.4F), walls[i]);
  }
}

static void Draw_Promenade(const Site& site) {
  const float u = site.unit, shore = Shore * site.height, kerb = Kerb * site.height;
  Paint_Box(site.picture, 0, shore, site.width, kerb, Lit(site, {196, 186, 166}));
  Paint_Box(site.picture, 0, shore, site.width, shore + 0.012F * u, Lit(site, {226, 218, 200}));
  for (int i = 0; static_cast<float>(i) * 0.09F * u < site.width; ++i) {
    const float x = (0.03F + 0.09F * static_cast<float>(i)) * u;
    Paint_Box(site.picture, x, shore - 0.045F * u, x + 0.007F * u, shore + 0.006F * u, Lit(site, {70, 78, 84}));
  }
  for (const float y : {0.044F, 0.024F})
    Paint_Box(site.picture, 0, shore - y * u, site.width, shore - (y - 0.006F) * u, Lit(site, {70, 78, 84}));
}

static void Draw_Road(const Site& site) {
  const float u = site.unit, kerb = Kerb * site.height;
  Paint_Box(site.picture, 0, kerb, site.width, site.height, Lit(site, {74, 76, 82}));
  Paint_Box(site.picture, 0, kerb, site.width, kerb + 0.008F * u, Lit(site, {150, 148, 142}));
  const float line = LaneLine * site.height;
  for (int i = 0; static_cast<float>(i) * 0.22F * u < site.width; ++i) {
    const float x = (0.05F + 0.22F * static_cast<float>(i)) * u;
    Paint_Box(site.picture, x, line - 0.005F * u, x + 0.11F * u, line + 0.005F * u, Lit(site, {226, 222, 208}));
  }
}

static void Draw_Lamp(const Site& site, float x) {
  const float u = site.unit, foot = 0.765F * site.height, top = foot - 0.3F * u;
  Paint_Box(site.picture, x - 0.005F * u, top, x + 0.005F * u, foot, Lit(site, {60, 64, 70}));
  Paint_Box(site.picture, x - 0.005F * u, top, x + 0.05F * u, top + 0.008F * u, Lit(site, {60, 64, 70}));
  const Point bulb = {x + 0.05F * u, top + 0.012F * u};
  if (site.light.lamps > 0) {
    for (int i = 7; i > 0; --i) {
      const float radius = 0.015F * static_cast<float>(i) * u;
      Paint_Ellipse(site.picture, bulb, radius, radius, {{255, 214, 140}, 0.07F});
    }
    Paint_Ellipse(site.picture, {bulb.x, foot + 0.02F * u}, 0.2F * u, 0.03F * u, {{255, 214, 140}, 0.16F});
  }
  Paint_Ellipse(site.picture, bulb, 0.016F * u, 0.009F * u,
                site.light.lamps > 0 ? Brush{{255, 240, 200}, 1} : Lit(site, {230, 230, 224}));
}

static void Draw_Poles(const Site& site) {
  const float u = site.unit;
  for (const float place : {0.17F, 0.64F, 1.1F}) Draw_Lamp(site, place * site.width);
  for (const float place : treePlaces)
    Paint_Box(site.picture, place * site.width - 0.011F * u, 0.76F * site.height - 0.16F * u, place * site.width + 0.011F * u,
              0.76F * site.height, Lit(site, {92, 66, 46}));
  const Point top = Pole_Top(*site.picture);
  Paint_Box(site.picture, top.x - 0.004F * u, top.y, top.x + 0.004F * u, 0.76F * site.height, Lit(site, {220, 222, 226}));
  Paint_Ellipse(site.picture, top, 0.009F * u, 0.009F * u, Lit(site, {230, 190, 80}));
}

void Scenery_Draw(Picture* picture, const Light& light) {
  const Site site = {picture, light, static_cast<float>(picture->width), static_cast<float>(picture->height),
                     Scenery_Unit(*picture)};
  Draw_Gradient(site, 0, Horizon, light.skyTop, light.skyLow);
  Draw_Stars(site);
  Draw_Hills(site, 0.11F, 0.035F, 0.4F, Color_Mix(Color_Lit({70, 110, 90}, light), light.haze, 0.65F));
  Draw_Hills(site, 0.05F, 0.03F, 2.1F + Pi, Color_Mix(Color_Lit({62, 106, 62}, light), light.haze, 0.25F));
  const Color far = Color_Mix(light.haze, Color_Lit({60, 120, 150}, light), 0.4F);
  Draw_Gradient(site, Horizon, Shore, far, Color_Lit({24, 84, 124}, light));
  Draw_Village(site);
  Draw_Lighthouse(site);
  Draw_Promenade(site);
  Draw_Road(site);
  Draw_Poles(site);
}

std::vector<uint8_t> Scenery_Sky_Mask(int32_t width, int32_t height) {
  // All black before a white sky.
  static constexpr Light silhouette = {{255, 255, 255}, {255, 255, 255}, {0, 0, 0}, {0, 0, 0}, 0};
  const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
  Picture picture = {width, height, std::vector<uint8_t>(3 * count)};
  Scenery_Draw(&picture, silhouette);
  std::vector<uint8_t> mask(count);
  for (size_t i = 0; i < count; ++i) {
    const size_t row = static_cast<size_t>(height) - 1 - i / static_cast<size_t>(width);
    mask[i] = picture.pixels[3 * (row * static_cast<size_t>(width) + i % static_cast<size_t>(width))];
  }
  return mask;
}
