// land.h - the shape of the land: heights, water, villages, tracks and countries on the game's grid
// of samples. World units. In these grids x runs to the right and z upward. In Map and MapTex a row
// of pixels has one x and a column has one z, so asImage transposes the grids for these images.
#pragma once

#include "canvas.h"

#include <cstdint>

constexpr float SPACING = 25;       // units between neighbouring samples, fixed by the game
constexpr float HEIGHT_RANGE = 600; // units of height for 256 greys, fixed by the game
constexpr float WATER_LEVEL = 36;   // height of the fjord; lakes and rivers are higher

// The kinds of land. The weights of all countries at a sample add up to 1.
enum Country
{
    COUNTRY_MEADOW,
    COUNTRY_HIGHLAND, // dry, with terraces of rock
    COUNTRY_FOREST,
    COUNTRY_MARSH, // the low delta of rivers, with ponds
    COUNTRY_SNOWFIELD,
    COUNTRIES
};

struct Place
{
    float x, z;   // centre
    float radius; // of the area with houses; its fields reach three times as far
};

struct CoursePoint // of a river, a track or another line through the land
{
    float x, z;
    float level;     // height of the water there
    float halfWidth; // 0 for lines without a width
};

using Course = std::vector<CoursePoint>;

struct Land
{
    uint32_t seed;
    Grid<unsigned char> map;    // the greys of Map
    Field height;               // after the game's smoothing
    Field water;                // 0 dry .. 1 lake, river or fjord
    Field track;                // 0 none .. 1 worn bare
    Field cliff;                // 1 on the cliff that ends the land and behind it, 0 elsewhere
    Field fall;                 // 0 .. 1 white water, where a river or the cliff's brook drops
    std::vector<Field> country; // weights 0 .. 1, one field for each Country
    std::vector<Place> villages;
    std::vector<Course> rivers; // points run downstream; each ends in the fjord or in a river

    int side() const
    {
        return height.width;
    }
    float half() const // units from the middle of the land to its end
    {
        return float(height.width) * SPACING / 2;
    }
    float toWorld(int sample) const
    {
        return float(sample) * SPACING - half();
    }
    float weight(Country of, int x, int z) const
    {
        return country[size_t(of)].at(x, z);
    }
};

// Grows the land of a seed. The side is 351 to 1501 samples, a multiple of 25 plus 1. The same seed
// and side give the same land on every machine. A land with a fault is grown again, but not without
// end: the last trial is returned even if it has a fault, which faultOf in faults.h tells.
Land makeLand(uint32_t seed, int side);

// A seed for noiseAt, fractal and scatter. It is nearly always different for two lands or
// two uses.
int noiseSeed(uint32_t landSeed, int use);

template <typename T> Grid<T> asImage(const Grid<T> &land)
{
    Grid<T> image(land.height, land.width);
    image.paint([&](int z, int x) { return land.at(x, z); });
    return image;
}
