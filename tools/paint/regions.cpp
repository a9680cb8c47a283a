#include "regions.h"

#include <array>

constexpr float REGION_SIZE = 3600; // units; approximate side of the cells that divide the land
constexpr float OUTSKIRTS = 1300;   // units at each edge of the land that the cells do not cover
constexpr float BORDER = 500;       // units over which one country turns into the next
constexpr float BORDER_SWAY = 700;  // units by which noise bends the borders, about
// Distances from the landing way: land nearer than the first is all meadow. Beyond the second no
// meadow is added.
constexpr float MEADOW_REACH[] = {900, 1800};

namespace
{
struct Region
{
    float x, z;
    Country country;
};

struct Regions
{
    int columns;
    float size; // units, the side of a cell
    std::vector<Region> cells;
};
using Weights = std::array<float, COUNTRIES>;
} // namespace

// The country with the lowest cost. The cost grows with each cell that has the country already, and
// more if the cell is a neighbour. Chance decides ties, a little against the meadow.
static Country choose(const Plan &plan, const Regions &regions, int x, int z)
{
    const int here = z * regions.columns + x;
    Weights cost = {};
    for (int i = 0; i < COUNTRIES; ++i)
        cost[size_t(i)] = plan.random(here, i, 101) + (i == COUNTRY_MEADOW ? 0.5f : 0);
    for (const Region &other : regions.cells)
        cost[size_t(other.country)] += 2;
    if (x > 0)
        cost[size_t(regions.cells[size_t(here - 1)].country)] += 5;
    if (z > 0)
        cost[size_t(regions.cells[size_t(here - regions.columns)].country)] += 5;
    return Country(std::min_element(cost.begin(), cost.end()) - cost.begin());
}

static Regions makeRegions(const Plan &plan)
{
    const float inner = 2 * (plan.half() - OUTSKIRTS);
    const int columns = std::max(int(inner / REGION_SIZE + 0.5f), 2);
    Regions regions = {columns, inner / float(columns), {}};
    for (int z = 0; z < columns; ++z)
        for (int x = 0; x < columns; ++x)
        {
            const float u = float(x) + 0.12f + 0.76f * plan.random(x, z, 102);
            const float w = float(z) + 0.12f + 0.76f * plan.random(x, z, 103);
            regions.cells.push_back({u * regions.size - inner / 2, w * regions.size - inner / 2,
                                     choose(plan, regions, x, z)});
        }
    return regions;
}

static float distanceTo(const Region &region, float x, float z)
{
    return length(x - region.x, z - region.z);
}

static Weights weightsAt(const Plan &plan, const Regions &regions, float x, float z)
{
    const float swayX = x + BORDER_SWAY * plan.waves(x, z, 1500, 3, 104);
    const float swayZ = z + BORDER_SWAY * plan.waves(x, z, 1500, 3, 105);
    float nearest = 4 * plan.half();
    for (const Region &region : regions.cells)
        nearest = std::min(nearest, distanceTo(region, swayX, swayZ));
    Weights weights = {};
    float sum = 0;
    for (const Region &region : regions.cells)
    {
        const float w = soft(BORDER, 0, distanceTo(region, swayX, swayZ) - nearest);
        weights[size_t(region.country)] += w;
        sum += w;
    }
    const float home =
        soft(MEADOW_REACH[1], MEADOW_REACH[0], landingDistance(plan, x, z) + 0.8f * (swayX - x));
    for (float &w : weights)
        w = w / sum * (1 - home);
    weights[COUNTRY_MEADOW] += home;
    return weights;
}

std::vector<Field> layCountries(const Plan &plan)
{
    const Regions regions = makeRegions(plan);
    std::vector<Field> countries(COUNTRIES, plan.field());
    for (int z = 0; z < plan.side; ++z)
        for (int x = 0; x < plan.side; ++x)
        {
            const Weights weights = weightsAt(plan, regions, plan.toWorld(x), plan.toWorld(z));
            for (size_t i = 0; i < COUNTRIES; ++i)
                countries[i].at(x, z) = weights[i];
        }
    return countries;
}
