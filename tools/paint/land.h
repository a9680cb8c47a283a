// land.h - the shape of the land: heights, water and tracks on the game's grid of samples.
// World units; grids here run x across and z up. In Map and MapTex a row of pixels is one x and a
// column one z, so both are turned when they are written (see asImage).
#pragma once

#include "canvas.h"

constexpr int LAND_SIDE = 501;      // samples along x and along z: blocks of 25 and their last row
constexpr float SPACING = 25;       // units between samples, fixed by the game
constexpr float HEIGHT_RANGE = 600; // height of a grey of 256, fixed by the game
constexpr float HALF_LAND = LAND_SIDE * SPACING / 2;
constexpr float WATER_LEVEL = 36; // of every lake and the fjord; nothing else lies as low

struct Place
{
    float x, z;   // centre
    float radius; // of the houses; the fields reach three times as far
};

// The villages; tracks link them.
constexpr Place PLACES[] = {{950, 1250, 250},  {-800, 3350, 220},  {-2500, -1100, 230},
                            {2350, 2500, 210}, {2150, -1250, 230}, {-3000, 2700, 200},
                            {330, -2050, 150}};

struct Land
{
    Grid<unsigned char> map; // the greys of Map
    Field height;            // as the game will smooth the map
    Field water;             // 0 dry .. 1 lake or river
    Field track;             // 0 none .. 1 worn bare
    Field cliff;             // 1 on the cliff that ends the land and behind it, 0 elsewhere
};

Land makeLand();

inline float toWorld(int sample)
{
    return float(sample) * SPACING - HALF_LAND;
}

template <typename T> Grid<T> asImage(const Grid<T> &land)
{
    Grid<T> image(land.height, land.width);
    image.paint([&](int z, int x) { return land.at(x, z); });
    return image;
}
