// plan.h - what every stage of growing a land knows: its seed and its extent.
#pragma once

#include "land.h"

constexpr float LANDING_Z = 300; // the middle of the landing place is at x = 0 and this z

struct Plan
{
    uint32_t seed;
    int side; // samples

    float half() const // units from the middle to the end of the land
    {
        return float(side) * SPACING / 2;
    }
    float toWorld(int sample) const
    {
        return float(sample) * SPACING - half();
    }
    int toSample(float world) const // rounded down, and clamped to the land
    {
        return std::clamp(int((world + half()) / SPACING), 0, side - 1);
    }
    Field field(float fill = 0) const
    {
        return Field(side, side, fill);
    }
    // Noise of about -1..1 with waves of `wavelength` units. Each `use` gives other noise.
    float waves(float x, float z, float wavelength, int octaves, int use) const
    {
        return fractal(x / wavelength, z / wavelength, 0, octaves, 0.5f, noiseSeed(seed, use));
    }
    float random(int i, int k, int use) const // 0 <= value < 1
    {
        return scatter(i, k, noiseSeed(seed, use));
    }
};

struct Point
{
    float x, z;
};

// The distance in units from the landing way, over which the cube falls and lands: the line x = 0
// from the south edge to z = 2 * LANDING_Z.
float landingDistance(const Plan &plan, float x, float z);
