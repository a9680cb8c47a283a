#include "faults.h"

#include "courses.h"

constexpr float LANDING_WIDTH = 150; // units on either side of x = 0 that must be good to land on
constexpr float LANDING_END = 600;   // the cube comes down between z = 0 and this z
constexpr float STEEPEST_LANDING = 0.27f;
constexpr float HIGHEST_LANDING = 300;
constexpr float VALLEY_START = -4000; // where the cube appears
constexpr float COAST_WIDTH = 2000;   // the part of the valley this near the edge is not checked
constexpr float LARGEST_RISE = 4; // units that a river may rise; just below two greys of the map
constexpr size_t FEWEST_VILLAGES = 3;

static int sampleAt(const Land &land, float world)
{
    return std::clamp(int((world + land.half()) / SPACING), 0, land.side() - 1);
}

static float slopeAt(const Field &height, int x, int z)
{
    return length(height.clamped(x + 1, z) - height.clamped(x - 1, z),
                  height.clamped(x, z + 1) - height.clamped(x, z - 1)) /
           (2 * SPACING);
}

static int isGoodToLandOn(const Land &land)
{
    const int last = sampleAt(land, LANDING_END);
    for (int z = sampleAt(land, 0); z <= last; ++z)
        for (int x = sampleAt(land, -LANDING_WIDTH); x <= sampleAt(land, LANDING_WIDTH); ++x)
            if (land.water.at(x, z) > 0.01f || land.height.at(x, z) > HIGHEST_LANDING ||
                slopeAt(land.height, x, z) > STEEPEST_LANDING)
                return 0;
    return 1;
}

static int isValleyOpen(const Land &land)
{
    const int x = sampleAt(land, 0);
    const int last = sampleAt(land, 0);
    for (int z = sampleAt(land, std::max(VALLEY_START, COAST_WIDTH - land.half())); z <= last; ++z)
        if (land.height.at(x, z) > HIGHEST_LANDING)
            return 0;
    return 1;
}

float largestRise(const Land &land, const Course &river)
{
    float lowest = HEIGHT_RANGE;
    float rise = 0;
    for (const CoursePoint &p : river)
    {
        const float height = std::max(heightAt(land.height, p.x, p.z), WATER_LEVEL);
        lowest = std::min(lowest, height);
        rise = std::max(rise, height - lowest);
    }
    return rise;
}

static int isByWater(const Land &land, float x, float z)
{
    float wettest = 0;
    for (int k = 0; k < 9; ++k)
        wettest = std::max(wettest, land.water.clamped(sampleAt(land, x) + k % 3 - 1,
                                                       sampleAt(land, z) + k / 3 - 1));
    return wettest > 0.5f;
}

static int areRiversGood(const Land &land)
{
    for (const Course &river : land.rivers)
        if (largestRise(land, river) > LARGEST_RISE ||
            !isByWater(land, river.back().x, river.back().z))
            return 0;
    return !land.rivers.empty();
}

static int areVillagesDry(const Land &land)
{
    for (const Place &village : land.villages)
        if (land.water.at(sampleAt(land, village.x), sampleAt(land, village.z)) > 0.01f)
            return 0;
    return 1;
}

const char *faultOf(const Land &land)
{
    if (!isGoodToLandOn(land))
        return "the landing place is wet, steep or high";
    if (!isValleyOpen(land))
        return "the valley to the landing place is closed";
    if (!areRiversGood(land))
        return "a river runs uphill or ends on dry land";
    if (land.villages.size() < FEWEST_VILLAGES || !areVillagesDry(land))
        return "there are too few villages, or a wet one";
    return nullptr;
}
