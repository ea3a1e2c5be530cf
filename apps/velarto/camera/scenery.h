/* The still parts of the scene: a harbour with a street along it, in a given light. */
#pragma once

#include "apps/velarto/camera/paint.h"

struct Light {
  Color skyTop, skyLow;  ///< At the upper edge and at the horizon.
  Color haze;            ///< What far things fade into.
  Color tint;            ///< What a white thing looks like.
  float lamps;           ///< 0: off, 1: on.
};

inline constexpr Light dayLight = {{58, 126, 206}, {190, 220, 240}, {176, 204, 226}, {255, 255, 255}, 0};
inline constexpr Light duskLight = {{70, 62, 128}, {255, 162, 92}, {212, 130, 112}, {214, 150, 138}, 1};
inline constexpr Light nightLight = {{7, 10, 30}, {26, 36, 72}, {22, 30, 60}, {58, 68, 104}, 1};

/** Heights of the scene's parts, as parts of the picture's height. */
constexpr float Horizon = 0.52F, Shore = 0.70F, Kerb = 0.78F, LaneLine = 0.885F;

/** Places of things on the promenade, as parts of the picture's width. */
inline constexpr float treePlaces[] = {0.06F, 0.30F, 0.52F, 0.93F};
constexpr float PolePlace = 0.42F, LighthousePlace = 0.80F;

/** The side of the square that things are measured by: the picture's height, or less if it is narrow. */
float Scenery_Unit(const Picture& picture);

/** The lamp of the lighthouse. */
Point Lighthouse_Lamp(const Picture& picture);
/** Top of the flag pole. */
Point Pole_Top(const Picture& picture);

/** A thing's colour in that light. */
Color Color_Lit(const Color& color, const Light& light);

/** Paints all of the picture, whose size is set. */
void Scenery_Draw(Picture* picture, const Light& light);

/** A byte a pixel, top row first: 255 where the sky is to be seen. */
std::vector<uint8_t> Scenery_Sky_Mask(int32_t width, int32_t height);
