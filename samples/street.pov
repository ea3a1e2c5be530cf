// A street as a camera on a lamp post sees it, 4.8 seconds long; `clock` runs from 0 to 1. One unit is a metre.
#version 3.7;
global_settings { assumed_gamma 1.0 max_trace_level 6 }
#include "colors.inc"

camera { location <-7.5, 6.2, -11> look_at <1.2, 1.7, 3.4> right x * 4 / 3 angle 58 }
light_source { <-60, 55, -45> color rgb <1.25, 1.15, 0.98> area_light <5, 0, 0>, <0, 5, 0>, 3, 3 adaptive 1 }
light_source { <30, 40, -60> color rgb <0.24, 0.27, 0.34> shadowless }

sky_sphere {
  pigment { gradient y color_map { [0.0 rgb <0.80, 0.86, 0.92>] [0.35 rgb <0.38, 0.57, 0.85>] [1.0 rgb <0.18, 0.33, 0.65>] } }
  pigment {
    bozo turbulence 0.7 octaves 5 scale <0.35, 0.12, 0.35> translate <clock * 0.06, 0, 0>
    color_map { [0.0 rgbt <1, 1, 1, 1>] [0.52 rgbt <1, 1, 1, 1>] [0.75 rgbt <1, 1, 1, 0.15>] [1 rgbt <0.92, 0.93, 0.95, 0>] }
  }
}

#declare Grass = texture {
  pigment { granite scale 0.9 color_map { [0 rgb <0.12, 0.26, 0.06>] [0.5 rgb <0.20, 0.37, 0.10>] [1 rgb <0.33, 0.46, 0.16>] } }
  normal { granite 0.5 scale 0.2 }
}
#declare Asphalt = texture {
  pigment { granite scale 0.5 color_map { [0 rgb <0.13, 0.13, 0.14>] [1 rgb <0.24, 0.24, 0.25>] } }
  normal { granite 0.2 scale 0.1 }
}
#declare Slabs = texture {
  pigment { brick rgb <0.30, 0.29, 0.28>, rgb <0.52, 0.50, 0.47> brick_size <1, 1, 1> mortar 0.05 translate y * 0.5 }
}

plane { y, -0.02 texture { Grass } }
box { <-80, -0.5, -2.6>, <80, 0, 3.6> texture { Asphalt } }
box { <-80, -0.5, 3.6>, <80, 0.14, 5.9> texture { Slabs } }
box { <-80, -0.5, -4.4>, <80, 0.14, -2.6> texture { Slabs } }
#declare I = -24;
#while (I < 24)
  box { <I, 0, 0.42>, <I + 1.5, 0.006, 0.58> pigment { rgb 0.80 } }
  #declare I = I + 3;
#end

#macro Brick_Wall(A, B, Shade)
  box { A, B pigment { brick rgb Shade * 0.6 + 0.15, rgb Shade brick_size <0.5, 0.16, 0.5> mortar 0.025 } }
#end
#macro Pane(X, Y, Z)
  box { <X, Y, Z - 0.06>, <X + 1.0, Y + 1.25, Z + 0.1> pigment { rgb 0.88 } }
  box { <X + 0.08, Y + 0.08, Z - 0.08>, <X + 0.92, Y + 1.17, Z> pigment { rgb <0.08, 0.11, 0.16> } finish { reflection 0.35 specular 0.5 } }
  box { <X + 0.46, Y, Z - 0.09>, <X + 0.54, Y + 1.25, Z> pigment { rgb 0.88 } }
#end
#macro House(X, W, Shade, Roof)
  Brick_Wall(<X, 0, 9>, <X + W, 5.2, 15>, Shade)
  prism { linear_sweep 0, W + 0.8, 4 <-3.5, 0>, <3.5, 0>, <0, 2.8>, <-3.5, 0>
    rotate <-90, 0, 0> rotate y * 90 scale <-1, 1, 1>
    translate <X + W + 0.4, 5.2, 12>
    pigment { gradient y color_map { [0 rgb Roof] [0.8 rgb Roof * 1.3] [0.8 rgb Roof * 0.5] [1 rgb Roof * 0.6] } scale 0.35 } }
  Pane(X + 0.8, 0.9, 9) Pane(X + W - 1.9, 0.9, 9) Pane(X + 0.8, 3.2, 9) Pane(X + W / 2 - 0.5, 3.2, 9) Pane(X + W - 1.9, 3.2, 9)
  box { <X + W / 2 - 0.55, 0, 8.93>, <X + W / 2 + 0.55, 2.2, 9.1> pigment { rgb <0.16, 0.26, 0.20> } finish { specular 0.3 } }
#end
House(-13.5, 7.5, <0.62, 0.26, 0.18>, <0.25, 0.14, 0.11>)
House(-3.8, 7.8, <0.80, 0.72, 0.56>, <0.20, 0.21, 0.24>)
House(6.6, 8.2, <0.55, 0.32, 0.26>, <0.32, 0.15, 0.11>)
House(17, 8, <0.70, 0.68, 0.62>, <0.23, 0.20, 0.20>)

#macro Tree(X, Z, H, Seed)
  #local R = seed(Seed);
  cylinder { <X, 0, Z>, <X, H * 0.6, Z>, 0.13 pigment { rgb <0.25, 0.17, 0.11> } }
  union {
    #local K = 0;
    #while (K < 26)
      #local A = rand(R) * 2 * pi;
      #local D = rand(R) * 0.95;
      sphere { <X + D * cos(A), H * 0.62 + rand(R) * H * 0.42, Z + D * sin(A)>, 0.35 + rand(R) * 0.35 }
      #local K = K + 1;
    #end
    pigment { granite scale 0.6 color_map { [0 rgb <0.07, 0.19, 0.05>] [0.6 rgb <0.17, 0.36, 0.09>] [1 rgb <0.42, 0.52, 0.18>] } }
    normal { granite 1.2 scale 0.3 }
  }
#end
Tree(-4.9, 6.9, 4.4, 11)
Tree(4.9, 6.9, 4.9, 12)
Tree(15.4, 7.1, 4.6, 13)

cylinder { <1.2, 0, 5.5>, <1.2, 6.2, 5.5>, 0.07 pigment { rgb 0.30 } finish { specular 0.4 } }
cylinder { <1.2, 6.1, 5.5>, <1.2, 6.35, 3.8>, 0.05 pigment { rgb 0.30 } }
box { <1.05, 6.22, 3.3>, <1.35, 6.36, 4.0> pigment { rgb 0.75 } }
#declare I = -14;
#while (I < 22)
  box { <I, 0, 7.6>, <I + 0.09, 0.95, 7.66> pigment { rgb 0.9 } }
  #declare I = I + 0.3;
#end
box { <-14, 0.3, 7.66>, <22, 0.38, 7.70> pigment { rgb 0.85 } }
box { <-14, 0.7, 7.66>, <22, 0.78, 7.70> pigment { rgb 0.85 } }

#macro Car(Paint)
  #local Turn = clock * 30 * 360;
  union {
    superellipsoid { <0.25, 0.35> scale <2.05, 0.36, 0.82> translate y * 0.62 }
    superellipsoid { <0.45, 0.45> scale <1.15, 0.42, 0.70> translate <-0.15, 1.10, 0> }
    pigment { rgb Paint } finish { specular 0.7 roughness 0.02 reflection { 0.04, 0.25 fresnel } conserve_energy } interior { ior 1.5 }
  }
  superellipsoid { <0.45, 0.45> scale <1.00, 0.27, 0.715> translate <-0.15, 1.13, 0> pigment { rgb 0.05 } finish { reflection 0.3 specular 0.6 } }
  superellipsoid { <0.45, 0.45> scale <1.175, 0.27, 0.60> translate <-0.15, 1.13, 0> pigment { rgb 0.06 } finish { reflection 0.3 specular 0.6 } }
  #local S = -1;
  #while (S < 2)
    #local E = -1;
    #while (E < 2)
      union {
        cylinder { <0, 0, -0.11>, <0, 0, 0.11>, 0.33 pigment { rgb 0.04 } }
        cylinder { <0, 0, -0.12>, <0, 0, 0.12>, 0.19 pigment { radial frequency 5 color_map { [0.6 rgb 0.7] [0.6 rgb 0.15] } rotate x * 90 } rotate z * -Turn }
        translate <E * 1.25, 0.33, S * 0.76>
      }
      #local E = E + 2;
    #end
    sphere { <2.0, 0.66, S * 0.55>, 0.13 pigment { rgb <1, 1, 0.85> } finish { ambient 0.7 } }
    sphere { <-2.02, 0.68, S * 0.58>, 0.11 pigment { rgb <0.9, 0.05, 0.03> } finish { ambient 0.4 } }
    #local S = S + 2;
  #end
#end
union { Car(<0.72, 0.05, 0.04>) translate <-17 + clock * 44, 0, -0.95> }
union { Car(<0.06, 0.17, 0.50>) rotate y * 180 translate <27 - clock * 40, 0, 2.1> }

#macro Limb(From, To, Thick) sphere_sweep { linear_spline 2, From, Thick, To, Thick * 0.8 } #end
#macro Walker(Coat, Legs, Steps)
  #local P = sin(clock * Steps * 2 * pi);
  union { Limb(<0, 0.85, 0.09>, <0.36 * P, 0.08, 0.09>, 0.09) Limb(<0, 0.85, -0.09>, <-0.36 * P, 0.08, -0.09>, 0.09) pigment { rgb Legs } }
  union {
    sphere { 0, 1 scale <0.19, 0.40, 0.24> translate y * 1.16 }
    Limb(<0, 1.42, 0.24>, <-0.30 * P, 0.95, 0.27>, 0.07) Limb(<0, 1.42, -0.24>, <0.30 * P, 0.95, -0.27>, 0.07)
    pigment { rgb Coat }
  }
  sphere { <0.02, 1.68, 0>, 0.135 pigment { rgb <0.78, 0.56, 0.43> } }
  sphere { <-0.02, 1.72, 0>, 0.14 pigment { rgb <0.14, 0.09, 0.06> } }
#end
union { Walker(<0.85, 0.62, 0.10>, <0.10, 0.12, 0.22>, 8) translate <-8.4 + clock * 6.6, 0.14, 4.7> }
union { Walker(<0.16, 0.42, 0.40>, <0.20, 0.17, 0.15>, 7) rotate y * 180 translate <8.6 - clock * 5.8, 0.14, 5.2> }
