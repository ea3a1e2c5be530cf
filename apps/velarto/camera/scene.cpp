#include "apps/velarto/camera/scene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <numbers>

static constexpr float Pi = std::numbers::pi_v<float>;
/** Seconds from one noon to the next, and where in it a scene starts: 0 is sunrise, 0.25 noon. */
static constexpr double DayLength = 150, StartOfDay = 0.1;
/** Heights of the sun, 1 at noon, between which day, dusk and night fade into each other. */
static constexpr float DayHeight = 0.35F, DuskHeight = 0.0F, NightHeight = -0.35F;

/** Height in pixels at which letters can be read. */
static constexpr int32_t LegibleCell = 14;

/** The state that all drawing operations need. */
struct Moment {
  const Scene& scene;
  Picture* picture;
  Light light;
  float turn;      ///< Part of the day, 0 to 1.
  float sun;       ///< The sun's height, -1 to 1.
  double seconds;  ///< Since the scene's start.
  float width, height, unit;
};

static Light Light_Mix(const Light& a, const Light& b, float part) {
  return {Color_Mix(a.skyTop, b.skyTop, part), Color_Mix(a.skyLow, b.skyLow, part), Color_Mix(a.haze, b.haze, part),
          Color_Mix(a.tint, b.tint, part), a.lamps + (b.lamps - a.lamps) * part};
}

static void Blend_Pictures(const Picture& a, const Picture& b, float part, Picture* out) {
  const auto weight = static_cast<int32_t>(part * 256);
  const uint8_t *from = a.pixels.data(), *to = b.pixels.data();
  uint8_t* const pixels = out->pixels.data();
  const size_t count = out->pixels.size();
  for (size_t i = 0; i < count; ++i) pixels[i] = static_cast<uint8_t>((from[i] * (256 - weight) + to[i] * weight) >> 8);
}

/** Paints the still parts in the moment's light. */
static void Draw_Still_Parts(Moment* moment) {
  const Scene& scene = moment->scene;
  if (moment->sun > DuskHeight) {
    const float part = std::clamp((DayHeight - moment->sun) / (DayHeight - DuskHeight), 0.0F, 1.0F);
    moment->light = Light_Mix(dayLight, duskLight, part);
    Blend_Pictures(scene.day, scene.dusk, part, moment->picture);
  } else {
    const float part = std::clamp((DuskHeight - moment->sun) / (DuskHeight - NightHeight), 0.0F, 1.0F);
    moment->light = Light_Mix(duskLight, nightLight, part);
    Blend_Pictures(scene.dusk, scene.night, part, moment->picture);
  }
}

static Brush Lit(const Moment& moment, const Color& color, float opacity = 1) {
  return {Color_Lit(color, moment.light), opacity};
}

/** A position on a track that repeats after `span`: 0 to span. */
static float Way(const Moment& moment, float speed, float offset, float span) {
  const double place =
      std::fmod(moment.seconds * static_cast<double>(speed) + static_cast<double>(offset), static_cast<double>(span));
  return static_cast<float>(place);
}

/** Sun by day, moon by night: both rise at the left and set at the right. */
static void Draw_Sun(const Moment& moment) {
  const bool day = moment.turn < 0.5F;
  const float way = day ? moment.turn * 2 : moment.turn * 2 - 1;
  const Point place = {moment.width * (0.02F + 0.96F * way),
                       moment.height * (Horizon + 0.03F) - moment.height * 0.42F * std::sin(way * Pi)};
  const float radius = 0.045F * moment.unit;
  const Color color =
      day ? Color_Mix({255, 150, 80}, {255, 244, 200}, std::clamp(moment.sun * 2, 0.0F, 1.0F)) : Color{236, 236, 220};
  for (int i = 6; i > 0; --i) {
    const float halo = 1 + (day ? 0.5F : 0.2F) * static_cast<float>(i);
    Paint_Ellipse(moment.picture, place, radius * halo, radius * halo, {color, 0.05F, &moment.scene.sky});
  }
  Paint_Ellipse(moment.picture, place, radius, radius, {color, 1, &moment.scene.sky});
}

static void Draw_Clouds(const Moment& moment) {
  static constexpr Point puffs[] = {{-0.11F, 0.012F}, {-0.05F, -0.012F}, {0.01F, -0.03F}, {0.07F, -0.008F}, {0.12F, 0.014F}};
  for (int i = 0; i < 5; ++i) {
    const float index = static_cast<float>(i), size = (0.7F + 0.3F * std::sin(index * 2.3F)) * moment.unit;
    const float span = moment.width + 0.6F * moment.unit;
    const float x = Way(moment, moment.unit * (0.008F + 0.004F * index), span * index / 5, span) - 0.3F * moment.unit;
    const float y = moment.height * (0.12F + 0.055F * static_cast<float>(i * 2 % 5));
    const Color color = Color_Mix(Color_Lit({255, 255, 255}, moment.light), moment.light.skyLow, 0.35F);
    for (const Point puff : puffs)
      Paint_Ellipse(moment.picture, {x + puff.x * size, y + puff.y * size}, 0.075F * size, 0.032F * size,
                    {color, 1, &moment.scene.sky});
  }
}

static void Draw_Waves(const Moment& moment) {
  const float top = Horizon * moment.height, depth = (Shore - Horizon) * moment.height;
  for (int i = 0; i < 70; ++i) {
    const float index = static_cast<float>(i), near = std::fmod(index * 0.618034F, 1.0F);
    const float span = moment.width + 0.2F * moment.unit;
    const float drift = moment.unit * (0.01F + 0.03F * near) * (i % 2 ? 1.0F : 0.7F);
    const float x = Way(moment, drift, span * std::fmod(index * 0.7548F, 1.0F), span) - 0.1F * moment.unit;
    const float glint =
        0.5F + 0.5F * std::sin(static_cast<float>(std::fmod(moment.seconds, 1000.0)) * (1.2F + 0.02F * index) + index);
    const Point place = {x, top + depth * (0.04F + 0.9F * near * near)};
    Paint_Ellipse(moment.picture, place, (0.012F + 0.035F * near) * moment.unit, (0.0012F + 0.0028F * near) * moment.unit,
                  {Color_Mix(moment.light.skyLow, Color_Lit({255, 255, 255}, moment.light), 0.5F), 0.55F * glint});
  }
}

static void Draw_Boat(const Moment& moment, float speed, float offset, float depth, float size, const Color& sail) {
  const float span = moment.width + size * moment.unit, u = size * moment.unit;
  const float x = Way(moment, speed * moment.unit, offset * moment.width, span) - u / 2;
  const float rock = std::sin(static_cast<float>(std::fmod(moment.seconds, 1000.0)) * 1.7F + offset * 9);
  const float y = (Horizon + depth * (Shore - Horizon)) * moment.height + 0.02F * u * rock, lean = 0.03F * u * rock;
  const Point hull[] = {{x - 0.42F * u, y - 0.08F * u},
                        {x + 0.48F * u, y - 0.1F * u},
                        {x + 0.34F * u, y + 0.06F * u},
                        {x - 0.32F * u, y + 0.06F * u}};
  const Point main[] = {{x + 0.02F * u, y - 0.14F * u}, {x + lean, y - 0.95F * u}, {x - 0.36F * u, y - 0.16F * u}};
  const Point jib[] = {{x + 0.07F * u, y - 0.14F * u}, {x + 0.03F * u + lean, y - 0.85F * u}, {x + 0.42F * u, y - 0.14F * u}};
  Paint_Ellipse(moment.picture, {x, y + 0.07F * u}, 0.5F * u, 0.03F * u, Lit(moment, {20, 60, 90}, 0.5F));
  Paint_Polygon(moment.picture, main, Lit(moment, sail));
  Paint_Polygon(moment.picture, jib, Lit(moment, Color_Mix(sail, {255, 255, 255}, 0.5F)));
  Paint_Polygon(moment.picture, hull, Lit(moment, {120, 60, 40}));
}

/** The lighthouse's beam turns: it is long when it points across and short when it points at us. */
static void Draw_Beam(const Moment& moment) {
  if (moment.light.lamps < 0.3F) return;
  const Point lamp = {Lighthouse_Lamp(*moment.picture).x, Lighthouse_Lamp(*moment.picture).y - 0.011F * moment.unit};
  const float turn = std::cos(static_cast<float>(std::fmod(moment.seconds, 6.0)) / 6 * 2 * Pi), reach = turn * 0.9F * moment.unit;
  const float spread = 0.055F * moment.unit;
  for (const float part : {1.0F, 0.75F, 0.5F}) {
    const Point beam[] = {lamp, {lamp.x + reach * part, lamp.y - spread * part}, {lamp.x + reach * part, lamp.y + spread * part}};
    Paint_Polygon(moment.picture, beam, {{255, 244, 190}, 0.12F * moment.light.lamps});
  }
  Paint_Ellipse(moment.picture, lamp, 0.03F * moment.unit, 0.03F * moment.unit, {{255, 244, 190}, 0.3F * (1 - std::abs(turn))});
}

static void Draw_Trees(const Moment& moment) {
  static constexpr Point leaves[] = {{0, -0.05F}, {-0.05F, 0}, {0.05F, 0}, {-0.025F, 0.035F}, {0.03F, 0.035F}, {0, 0.005F}};
  for (const float place : treePlaces) {
    const auto time = static_cast<float>(std::fmod(moment.seconds, 1000.0));
    const float sway = 0.012F * std::sin(time * 1.3F + place * 20) + 0.005F * std::sin(time * 3.1F + place * 7);
    const Point crown = {place * moment.width, 0.76F * moment.height - 0.2F * moment.unit};
    for (int i = 0; i < 6; ++i) {
      const Point center = {crown.x + (leaves[i].x + sway * (0.5F - 8 * leaves[i].y)) * moment.unit,
                            crown.y + leaves[i].y * moment.unit};
      const Color green = i % 2 ? Color{58, 124, 56} : Color{78, 148, 66};
      Paint_Ellipse(moment.picture, center, 0.052F * moment.unit, 0.046F * moment.unit, Lit(moment, green));
    }
  }
}

static void Draw_Flag(const Moment& moment) {
  static constexpr Color stripes[] = {{24, 92, 160}, {244, 244, 240}, {232, 150, 32}};
  const Point top = Pole_Top(*moment.picture);
  const auto time = static_cast<float>(std::fmod(moment.seconds, 1000.0));
  const auto edge = [&](int i, float y) {
    const float part = static_cast<float>(i) / 10;
    return Point{top.x + 0.14F * moment.unit * part,
                 top.y + (0.014F + y + 0.014F * part * std::sin(part * 7 - time * 5)) * moment.unit};
  };
  for (int stripe = 0; stripe < 3; ++stripe) {
    std::vector<Point> points;
    for (int i = 0; i <= 10; ++i) points.push_back(edge(i, 0.03F * static_cast<float>(stripe)));
    for (int i = 10; i >= 0; --i) points.push_back(edge(i, 0.03F * static_cast<float>(stripe + 1)));
    Paint_Polygon(moment.picture, points, Lit(moment, stripes[stripe]));
  }
}

struct Car {
  float speed;   ///< Units a second; below 0 to the left, on the far lane.
  float offset;  ///< Units.
  bool van;
  Color color;
};
static constexpr Car cars[] = {
    {-0.27F, 0.2F, false, {206, 52, 44}}, {-0.27F, 1.1F, true, {238, 236, 228}}, {-0.27F, 1.7F, false, {60, 130, 90}},
    {0.36F, 0.1F, false, {40, 96, 180}},  {0.36F, 0.9F, false, {240, 184, 40}},  {0.36F, 1.6F, true, {96, 100, 112}},
};

/** ahead: 1 for a car that goes to the right, -1 for one to the left. */
static void Draw_Car(const Moment& moment, const Car& car, float x, float ahead) {
  const float u = moment.unit * (ahead > 0 ? 1.15F : 1.0F), y = (ahead > 0 ? 0.965F : 0.855F) * moment.height;
  const auto at = [&](float along, float up) { return Point{x + ahead * along * u, y - up * u}; };
  const float roof = car.van ? 0.13F : 0.1F, front = car.van ? 0.105F : 0.06F, back = car.van ? -0.125F : -0.09F;
  Paint_Ellipse(moment.picture, at(0, 0.002F), 0.14F * u, 0.012F * u, {{0, 0, 0}, 0.35F});
  const Point cabin[] = {at(back, 0.055F), at(back + 0.025F, roof), at(front - 0.04F, roof), at(front + 0.01F, 0.055F)};
  const Point glass[] = {at(back + 0.02F, 0.062F), at(back + 0.034F, roof - 0.009F), at(front - 0.045F, roof - 0.009F),
                         at(front - 0.01F, 0.062F)};
  const Point body[] = {at(-0.135F, 0.02F), at(-0.135F, 0.055F), at(-0.12F, 0.064F),
                        at(0.1F, 0.062F),   at(0.135F, 0.045F),  at(0.135F, 0.02F)};
  Paint_Polygon(moment.picture, cabin, Lit(moment, car.color));
  Paint_Polygon(moment.picture, glass, Lit(moment, {150, 190, 210}));
  Paint_Line(moment.picture, at(-0.012F, 0.06F), at(-0.012F, roof - 0.004F), 0.008F * u, Lit(moment, car.color));
  Paint_Polygon(moment.picture, body, Lit(moment, Color_Mix(car.color, {0, 0, 0}, 0.08F)));
  for (const float wheel : {-0.08F, 0.083F}) {
    Paint_Ellipse(moment.picture, at(wheel, 0.024F), 0.026F * u, 0.026F * u, Lit(moment, {26, 26, 28}));
    Paint_Ellipse(moment.picture, at(wheel, 0.024F), 0.012F * u, 0.012F * u, Lit(moment, {180, 182, 186}));
  }
  const float lamps = moment.light.lamps;
  Paint_Ellipse(moment.picture, at(0.13F, 0.045F), 0.007F * u, 0.006F * u, {{255, 246, 210}, 0.5F + 0.5F * lamps});
  Paint_Ellipse(moment.picture, at(-0.133F, 0.048F), 0.005F * u, 0.007F * u, {{220, 30, 24}, 0.5F + 0.5F * lamps});
  for (int i = 0; lamps > 0 && i < 10; ++i) {
    const float reach = 0.36F - 0.03F * static_cast<float>(i);
    const Point cone[] = {at(0.135F, 0.048F), at(0.135F + reach, 0.05F), at(0.135F + reach, 0.045F - 0.18F * reach),
                          at(0.135F, 0.042F)};
    Paint_Polygon(moment.picture, cone, {{255, 244, 200}, 0.06F * lamps});
  }
}

static void Draw_Cars(const Moment& moment) {
  const float margin = 0.45F * moment.unit, span = std::max(moment.width + 2 * margin, 2.2F * moment.unit);
  for (const Car& car : cars) {
    const float way = Way(moment, std::abs(car.speed) * moment.unit, car.offset * moment.unit, span) - margin;
    Draw_Car(moment, car, car.speed > 0 ? way : moment.width - way, car.speed > 0 ? 1.0F : -1.0F);
  }
}

static void Draw_Hand(const Moment& moment, Point center, float turn, float length, float thickness) {
  const Point tip = {center.x + length * std::sin(turn * 2 * Pi), center.y - length * std::cos(turn * 2 * Pi)};
  Paint_Line(moment.picture, center, tip, thickness, {{20, 20, 24}, 1});
}

static void Draw_Clock_Face(const Moment& moment, const std::tm& time, float seconds) {
  const float radius = 0.11F * moment.unit, minutes = static_cast<float>(time.tm_min) + seconds / 60;
  const Point center = {1.3F * radius, 1.3F * radius};
  Paint_Ellipse(moment.picture, center, radius * 1.08F, radius * 1.08F, {{20, 20, 24}, 1});
  Paint_Ellipse(moment.picture, center, radius, radius, {{245, 245, 240}, 1});
  for (int i = 0; i < 12; ++i) {
    const float angle = static_cast<float>(i) / 6 * Pi;
    const Point mark = {center.x + 0.86F * radius * std::sin(angle), center.y - 0.86F * radius * std::cos(angle)};
    Paint_Ellipse(moment.picture, mark, 0.05F * radius, 0.05F * radius, {{20, 20, 24}, 1});
  }
  Draw_Hand(moment, center, (static_cast<float>(time.tm_hour % 12) + minutes / 60) / 12, 0.5F * radius, 0.1F * radius);
  Draw_Hand(moment, center, minutes / 60, 0.75F * radius, 0.07F * radius);
  Draw_Hand(moment, center, seconds / 60, 0.85F * radius, 0.03F * radius);
}

static void Draw_Clock(const Moment& moment, std::chrono::system_clock::time_point now) {
  const std::time_t whole = std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(now));
  const auto hundredths = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() / 10 % 100;
  std::tm time = {};
  localtime_r(&whole, &time);
  if (!moment.scene.lettered) {
    Draw_Clock_Face(moment, time, static_cast<float>(time.tm_sec) + static_cast<float>(hundredths) / 100);
    return;
  }
  char text[64] = "", end[8] = "";
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &time);
  std::snprintf(end, sizeof end, ".%02d", static_cast<int>(hundredths));
  const Lettering &clock = moment.scene.clock, &caption = moment.scene.caption;
  Lettering_Draw(clock, moment.picture, clock.cellWidth / 2, clock.cellHeight / 4, std::string(text) + end);
  Lettering_Draw(caption, moment.picture, clock.cellWidth / 2, clock.cellHeight * 5 / 4, "velarto camera");
}

void Scene_Start(int32_t width, int32_t height, Scene* scene) {
  scene->width = width;
  scene->height = height;
  for (auto [picture, light] : {std::pair(&scene->day, &dayLight), {&scene->dusk, &duskLight}, {&scene->night, &nightLight}}) {
    *picture = {width, height, std::vector<uint8_t>(3 * static_cast<size_t>(width) * static_cast<size_t>(height))};
    Scenery_Draw(picture, *light);
  }
  scene->sky = Scenery_Sky_Mask(width, height);
  // The clock's 22 characters and their margin fit the width of a narrow picture.
  const auto widest = static_cast<int32_t>(static_cast<float>(width) / (23 * LetterWidth));
  const int32_t cell = std::max(std::min(std::max(height / 12, LegibleCell), widest), 6);
  scene->lettered = Lettering_Load(cell, &scene->clock) && Lettering_Load(std::max(cell * 2 / 3, 6), &scene->caption);
  scene->start = std::chrono::system_clock::now();
}

void Scene_Draw(const Scene& scene, std::chrono::system_clock::time_point now, Picture* picture) {
  picture->width = scene.width;
  picture->height = scene.height;
  picture->pixels.resize(scene.day.pixels.size());
  // A clock put back must not make the ways negative.
  const double seconds = std::max(std::chrono::duration<double>(now - scene.start).count(), 0.0) + 100;
  const double turn = std::fmod((seconds - 100) / DayLength + StartOfDay, 1.0);
  Moment moment = {scene,
                   picture,
                   {},
                   static_cast<float>(turn),
                   std::sin(static_cast<float>(turn) * 2 * Pi),
                   seconds,
                   static_cast<float>(scene.width),
                   static_cast<float>(scene.height),
                   Scenery_Unit(*picture)};
  Draw_Still_Parts(&moment);
  Draw_Sun(moment);
  Draw_Clouds(moment);
  Draw_Waves(moment);
  Draw_Boat(moment, 0.03F, 0.3F, 0.12F, 0.09F, {246, 240, 226});
  Draw_Boat(moment, 0.055F, 0.75F, 0.5F, 0.17F, {226, 96, 70});
  Draw_Beam(moment);
  Draw_Trees(moment);
  Draw_Flag(moment);
  Draw_Cars(moment);
  Draw_Clock(moment, now);
}
