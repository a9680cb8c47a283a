// ground.h - how one sample of the land looks before it is lit. ground.cpp asks for the colour of
// the wild country first. It then lays farmland, beaches, the cliff, tracks and water over that
// colour. World units. Only ground.cpp and the files named below include this header.
#pragma once

#include "land.h"

// The game lights the land dimly and from the eye. It adds a white sheen to slopes that face the
// eye and multiplies everything with TexNoise. The colours are therefore brighter and more
// saturated here than on the screen.
constexpr Colour FOREST = hex(0x24601A);
constexpr Colour FOREST_LIGHT = hex(0x5A9630);
constexpr Colour SCREE = hex(0xCFAE62);
constexpr Colour FOAM = hex(0xF2FAFF);

constexpr float SUN[] = {0.62f, 0.58f, 0.53f}; // unit vector toward the sun, along x, y, z

struct Spot // one sample
{
    int seed; // of this land's noise; see layer
    float x, z;
    float height;             // world y
    float slope;              // rise per run
    float facing;             // sunlight on the slope: 0 none, 1 level ground, up to 1.5
    float hollow;             // units below the surroundings, negative on crests
    float rough;              // noise, about -1..1
    float grain;              // a random number, -0.5..0.5
    float moisture;           // 0 dry .. 1 wet
    float shore;              // units to the nearest water on dry land, 0 in the water
    float depth;              // units to the nearest shore in the water, 0 on dry land
    float open;               // share of water in the surroundings: low at a river, high on a lake
    float weights[COUNTRIES]; // shares of the countries, which add up to 1
};

// The seed of one layer of noise on this land.
inline int layer(const Spot &spot, int number)
{
    return spot.seed + number;
}

// A tree or a shrub. Each square cell of the ground has one at a random place.
struct Clump
{
    float distance; // from the middle of the nearest clump to the sample, in radii
    float sunward;  // the part of that distance that leads toward the sun
    float pick;     // a random number of this clump, 0 <= pick < 1
};
Clump clumpAt(const Spot &spot, float cell, float radius, int number);
float shadowOf(const Clump &clump); // 0 in the sun .. 1 in the shadow on the ground beside it

Colour snowColour(const Spot &spot);                 // country.cpp
Colour wildColour(const Spot &spot);                 // country.cpp
Colour cliffColour(const Spot &spot);                // cliff.cpp
Colour shoreColour(Colour ground, const Spot &spot); // beaches over the ground; shore.cpp
Colour waterColour(const Spot &spot);                // shore.cpp
// Fields and yards of the villages over the ground; farm.cpp.
Colour farmColour(Colour ground, const Spot &spot, const std::vector<Place> &villages);
// Roofs and their shadows, over colours that are lit; farm.cpp.
void buildHouses(Canvas &colours, const Land &land);
