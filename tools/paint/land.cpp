#include "land.h"

#include "coast.h"
#include "erosion.h"
#include "faults.h"
#include "painters.h"
#include "plan.h"
#include "progress.h"
#include "regions.h"
#include "relief.h"
#include "settlement.h"
#include "smoothing.h"
#include "water.h"

constexpr int TRIALS = 12;    // lands that are grown at most; the last is taken even with a fault
constexpr int DEEPENINGS = 4; // how many times the river beds of one land are deepened at most

int noiseSeed(uint32_t landSeed, int use)
{
    return int(scatter(int(landSeed), use, 77) * 1048576.0f); // libnoise multiplies seeds by 1013
}

// Sets land.map so that the game shows the wanted heights. Sets land.height to the heights that the
// game really gets from this map.
static void settleHeights(const Field &wanted, Land &land)
{
    const Field map = sharpened(wanted);
    for (size_t i = 0; i < map.cells.size(); ++i)
    {
        const float grey = std::floor(map.cells[i] / HEIGHT_RANGE * 256 + 0.5f);
        land.map.cells[i] = static_cast<unsigned char>(std::clamp(grey, 0.0f, 255.0f));
        land.height.cells[i] = float(land.map.cells[i]) / 256 * HEIGHT_RANGE;
    }
    smoothAsTheGame(land.height);
}

static void markCliff(const Plan &plan, const Waters &waters, Land &land)
{
    land.fall = riverFalls(plan, waters);
    for (int z = 0; z < plan.side; ++z)
        for (int x = 0; x < plan.side; ++x)
        {
            const float wx = plan.toWorld(x);
            const float wz = plan.toWorld(z);
            if (!isCliff(plan, wx, wz))
                continue;
            land.cliff.at(x, z) = soft(WATER_LEVEL + 4, WATER_LEVEL + 12, land.height.at(x, z));
            land.fall.at(x, z) = cliffFall(plan, wx, wz) * land.cliff.at(x, z);
        }
}

static Land growLand(const Plan &plan)
{
    const int side = plan.side;
    Land land = {plan.seed,    Grid<unsigned char>(side, side),
                 plan.field(), plan.field(),
                 plan.field(), plan.field(),
                 plan.field(), layCountries(plan),
                 {},           {}};
    startStage("Raising mountains");
    Field wanted = raiseGround(plan, land.country);
    startStage("Letting it rain");
    erode(plan, wanted);
    startStage("Leading the rivers to the fjord");
    const Waters waters = layWater(plan, land.country, wanted);
    startStage("Founding villages");
    land.villages = settle(plan, land.country, waters, wanted);
    land.track = wornBy(plan, layTracks(plan, waters, wanted, land.villages));
    startStage("Raising the cliff");
    raiseCliff(plan, wanted);
    settleHeights(wanted, land);
    for (int i = 0; i < DEEPENINGS && deepenBeds(plan, waters, land.height, wanted); ++i)
        settleHeights(wanted, land);
    land.rivers = waters.rivers;
    land.water = waterSurface(plan, waters, land.height);
    markCliff(plan, waters, land);
    return land;
}

// Few seeds give a land with a fault. Such a land is grown again from another seed, which is
// calculated from the first.
Land makeLand(uint32_t seed, int side)
{
    Land land = growLand({seed, side});
    for (int trial = 1; trial < TRIALS && faultOf(land); ++trial)
        land = growLand({uint32_t(noiseSeed(seed, 1000 + trial)), side});
    land.seed = seed;
    return land;
}

void paintLand(Images &images, const Land &land)
{
    addGreys(images, "Map", asImage(land.map));
}
