#include "coast.h"

// The game's smoothing limits how steep any ground can be. The cliff reaches that limit. In narrow
// bends and corners the smoothing makes the cliff a ramp, so all bends and corners of the cliff are
// wide. The tool rim counts the cubes that climb over the cliff.
constexpr float CLIFF_BRINK = 620;    // units from the edge of the land to the brink, on average
constexpr float CLIFF_WIDTH = 25;     // from the brink to the foot
constexpr float CLIFF_CORNER = 1000;  // radius; with wider or narrower corners more cubes climb
constexpr float CLIFF_BEND = 350;     // how far bends move the cliff of a large land
constexpr float BEND_LENGTH = 4500;   // along the coast
constexpr float CLIFF_HEADLAND = 120; // how far headlands move the cliff of a large land
constexpr float HEADLAND_LENGTH = 1000;
constexpr float LARGE_LAND = 10000; // half its extent; the cliff of a smaller land is straighter
constexpr float CLIFF_DIP = 30;     // how far the brink sinks below HEIGHT_RANGE
constexpr float CLIFF_CREST = 300;  // width of the level top; the player cannot see what is behind
constexpr float CLIFF_BACK = 0.6f;  // slope of the ground behind the top
constexpr float CLIFF_SPREAD = 270; // from the brink to the foot once the game has smoothed it
constexpr float FJORD_WIDTH = 320;  // width where the fjord is narrowest
constexpr float FJORD_BAYS = 700;   // added to the width in bays

constexpr float FALL_SPACING = 2600; // distance along the coast from brook to brook
constexpr float FALL_HALF_WIDTH = 22;

// A measure of the distance from the edge of the land: at the brink it is always CLIFF_BRINK. Noise
// is added to the true distance, which moves the brink inland or outward.
static float inwardAt(const Plan &plan, float x, float z)
{
    const float dx = std::fabs(x) - (plan.half() - CLIFF_CORNER);
    const float dz = std::fabs(z) - (plan.half() - CLIFF_CORNER);
    const float inward = CLIFF_CORNER - length(std::max(dx, 0.0f), std::max(dz, 0.0f)) -
                         std::min(std::max(dx, dz), 0.0f);
    const float waviness = square(std::min(plan.half() / LARGE_LAND, 1.0f));
    return inward + waviness * CLIFF_BEND * plan.waves(x, z, BEND_LENGTH, 1, 41) +
           waviness * CLIFF_HEADLAND * plan.waves(x, z, HEADLAND_LENGTH, 1, 42);
}

float shoreDistance(const Plan &plan, float x, float z)
{
    const float bay = plan.waves(x, z, 1100, 4, 43);
    return inwardAt(plan, x, z) - CLIFF_BRINK - CLIFF_WIDTH - FJORD_WIDTH -
           FJORD_BAYS * std::clamp(0.4f + 1.4f * bay, 0.0f, 1.0f);
}

int isCliff(const Plan &plan, float x, float z)
{
    return inwardAt(plan, x, z) < CLIFF_BRINK + CLIFF_SPREAD;
}

float coastSteepness(const Plan &plan, float x, float z)
{
    const float out = plan.half() - std::max(std::fabs(x), std::fabs(z));
    return soft(2800, 2000, out) * soft(0, 0.25f, plan.waves(x, z, 1700, 2, 44));
}

// The height of the cliff at a place `behind` units beyond its brink, toward the edge of the land.
static float cliffTop(const Plan &plan, float x, float z, float behind)
{
    const float dip = std::fabs(plan.waves(x, z, 900, 3, 45)) * 2;
    return std::max(HEIGHT_RANGE - CLIFF_DIP * std::min(dip, 1.0f) -
                        CLIFF_BACK * std::max(behind - CLIFF_CREST, 0.0f),
                    WATER_LEVEL);
}

void raiseCliff(const Plan &plan, Field &height)
{
    for (int z = 0; z < plan.side; ++z)
        for (int x = 0; x < plan.side; ++x)
        {
            const float wx = plan.toWorld(x);
            const float wz = plan.toWorld(z);
            const float behind = CLIFF_BRINK - inwardAt(plan, wx, wz);
            if (behind > -CLIFF_WIDTH)
                height.at(x, z) = mix(WATER_LEVEL, cliffTop(plan, wx, wz, behind),
                                      std::min(behind / CLIFF_WIDTH + 1, 1.0f));
        }
}

float cliffFall(const Plan &plan, float x, float z)
{
    const int alongX = std::fabs(z) > std::fabs(x); // which way the coast runs
    const float along = (alongX ? x : z) + 40 * plan.waves(x, z, 260, 1, 46);
    const int cell = int(std::floor(along / FALL_SPACING));
    const int edge = alongX * 2 + ((alongX ? z : x) > 0);
    const float at = (float(cell) + 0.2f + 0.6f * plan.random(cell, edge, 47)) * FALL_SPACING;
    const float width = FALL_HALF_WIDTH * (0.7f + 0.6f * plan.random(cell, edge, 48));
    return soft(width + 12, width - 10, std::fabs(along - at));
}
