#include "settlement.h"

#include "coast.h"

#include <queue>

constexpr float VILLAGES = 7.0f / (501 * 501); // villages per sample of the land
constexpr float VILLAGE_RADIUS[] = {150, 270};
constexpr int SEARCH_STEP = 5;          // samples between the places that are tried
constexpr float COAST_GAP = 420;        // least distance from a village to the fjord
constexpr float WATER_GAP = 260;        // least distance from a village to a river or lake
constexpr float WALK_TO_WATER = 1000;   // units to the water that meritOf counts as a walk of 1
constexpr float SALT = 0.8f;            // what the nearness of the fjord adds to the walk
constexpr float LANDING_GAP = 650;      // least distance from a village to the landing place
constexpr float GENTLE = 0.15f;         // slope of the ground under a village, at most
constexpr float HIGHEST_VILLAGE = 330;  // height above which there are none
constexpr float NEAREST_VILLAGE = 1750; // least distance of two; 0.7 times that if too few fit

constexpr int PACE = 3; // samples between neighbouring places of a walk; more on large lands
constexpr float STEEPNESS = 45; // a step costs 1 + STEEPNESS * slope * slope times as much
constexpr float FORD = 350;     // cost of a step into a river, in units of level ground
constexpr float SWIM = 5000;    // cost of a step into a lake
constexpr float WORN = 0.5f;    // factor on the cost where there is a track already
constexpr float DETOUR = 1.9f;  // factor on the cost of the direct way above which a link is added
constexpr float TRACK_HALF_WIDTH = 15;

namespace
{
struct Site
{
    float merit;
    Place place;
};
} // namespace

static float slopeAt(const Field &height, int x, int z)
{
    const float dx = height.clamped(x + 4, z) - height.clamped(x - 4, z);
    const float dz = height.clamped(x, z + 4) - height.clamped(x, z - 4);
    return length(dx, dz) / (8 * SPACING);
}

static float waterDistance(const Waters &waters, int x, int z)
{
    return std::min(waters.shore.at(x, z), waters.river.halfWidth.at(x, z) > 0
                                               ? waters.river.distance.at(x, z)
                                               : waters.shore.at(x, z));
}

// The steepest ground under a village.
static float roughness(const Field &height, int x, int z)
{
    float steepest = 0;
    for (int k = 0; k < 9; ++k)
        steepest = std::max(steepest, slopeAt(height, x + (k % 3 - 1) * 6, z + (k / 3 - 1) * 6));
    return steepest;
}

// How well a village would be placed here. A village is possible only where the value is above 0.
static float meritOf(const Plan &plan, const std::vector<Field> &countries, const Waters &waters,
                     const Field &height, int x, int z)
{
    const float wx = plan.toWorld(x);
    const float wz = plan.toWorld(z);
    if (length(wx, wz - LANDING_Z) < LANDING_GAP || height.at(x, z) > HIGHEST_VILLAGE ||
        waters.shore.at(x, z) < WATER_GAP || waterDistance(waters, x, z) < WATER_GAP ||
        shoreDistance(plan, wx, wz) < COAST_GAP)
        return 0;
    const int isByFjord = waters.shoreLevel.at(x, z) <= WATER_LEVEL;
    const float walk = std::min(waterDistance(waters, x, z) / WALK_TO_WATER, 1.5f) +
                       (isByFjord ? SALT * soft(1800, 600, waters.shore.at(x, z)) : 0);
    const float harsh = countries[COUNTRY_SNOWFIELD].at(x, z) +
                        0.5f * countries[COUNTRY_MARSH].at(x, z) +
                        0.3f * countries[COUNTRY_HIGHLAND].at(x, z);
    return 3 - 0.7f * walk - 0.6f * harsh - 5 * roughness(height, x, z) +
           0.9f * plan.random(x, z, 61);
}

static std::vector<Site> findSites(const Plan &plan, const std::vector<Field> &countries,
                                   const Waters &waters, const Field &height)
{
    std::vector<Site> sites;
    for (int z = 40; z < plan.side - 40; z += SEARCH_STEP)
        for (int x = 40; x < plan.side - 40; x += SEARCH_STEP)
        {
            const float merit = meritOf(plan, countries, waters, height, x, z);
            const float size = plan.random(x, z, 62);
            if (merit > 0 && roughness(height, x, z) < GENTLE)
                sites.push_back({merit,
                                 {plan.toWorld(x), plan.toWorld(z),
                                  mix(VILLAGE_RADIUS[0], VILLAGE_RADIUS[1], size)}});
        }
    std::stable_sort(sites.begin(), sites.end(),
                     [](const Site &a, const Site &b) { return a.merit > b.merit; });
    return sites;
}

static int isApart(const std::vector<Place> &villages, const Place &place, float gap)
{
    const auto isFar = [&](const Place &other)
    { return length(other.x - place.x, other.z - place.z) > gap; };
    return std::all_of(villages.begin(), villages.end(), isFar);
}

// Evens out the ground under the houses, but leaves the banks of rivers.
static void levelGround(const Plan &plan, const Waters &waters, const Place &place, Field &height)
{
    const float mean = height.at(plan.toSample(place.x), plan.toSample(place.z));
    const int right = plan.toSample(place.x + 2 * place.radius);
    const int top = plan.toSample(place.z + 2 * place.radius);
    for (int z = plan.toSample(place.z - 2 * place.radius); z <= top; ++z)
        for (int x = plan.toSample(place.x - 2 * place.radius); x <= right; ++x)
        {
            const float d = length(plan.toWorld(x) - place.x, plan.toWorld(z) - place.z);
            float &h = height.at(x, z);
            const float bank = soft(WATER_GAP, 80, waterDistance(waters, x, z));
            h = mix(h, mean, 0.6f * soft(1.5f * place.radius, 0.5f * place.radius, d) * (1 - bank));
        }
}

std::vector<Place> settle(const Plan &plan, const std::vector<Field> &countries,
                          const Waters &waters, Field &height)
{
    const size_t wanted = size_t(std::max(VILLAGES * square(float(plan.side)), 3.0f));
    const std::vector<Site> sites = findSites(plan, countries, waters, height);
    std::vector<Place> villages;
    for (const float gap : {NEAREST_VILLAGE, 0.7f * NEAREST_VILLAGE})
        for (const Site &site : sites)
            if (villages.size() < wanted && isApart(villages, site.place, gap))
                villages.push_back(site.place);
    for (const Place &village : villages)
        levelGround(plan, waters, village, height);
    return villages;
}

namespace
{
struct Walk // a coarser grid of the land, on which tracks are searched
{
    const Plan &plan;
    int pace, side; // samples between its places, places along a side
    Field toll;     // cost that is added for each place in a river or a lake
    Field height;
    Field wear; // factor on the cost
};

struct Ways // the cheapest ways from one place to all others
{
    std::vector<float> cost;
    std::vector<int> from;
};

struct Step
{
    float cost;
    int place;

    bool operator<(const Step &other) const
    {
        return cost != other.cost ? cost > other.cost : place > other.place;
    }
};
} // namespace

static Walk surveyGround(const Plan &plan, const Waters &waters, const Field &height)
{
    const int pace = PACE * (plan.side / 1000 + 1);
    const int side = plan.side / pace;
    Walk walk = {plan, pace, side, Field(side, side), Field(side, side), Field(side, side, 1)};
    for (int k = 0; k < side; ++k)
        for (int i = 0; i < side; ++i)
        {
            const int x = i * pace;
            const int z = k * pace;
            const int isRiver =
                waters.river.distance.at(x, z) < waters.river.halfWidth.at(x, z) + 30;
            const float lake = SWIM * soft(120, 40, waters.shore.at(x, z));
            walk.toll.at(i, k) = lake + (isRiver ? FORD : 0);
            walk.height.at(i, k) = height.at(x, z);
        }
    return walk;
}

static int placeOf(const Walk &walk, const Place &village)
{
    return walk.plan.toSample(village.z) / walk.pace * walk.side +
           walk.plan.toSample(village.x) / walk.pace;
}

static float costOf(const Walk &walk, int from, int to)
{
    const float dx = float(from % walk.side - to % walk.side);
    const float dz = float(from / walk.side - to / walk.side);
    const float distance = length(dx, dz) * float(walk.pace) * SPACING;
    const float slope =
        (walk.height.cells[size_t(to)] - walk.height.cells[size_t(from)]) / distance;
    return (distance * (1 + STEEPNESS * slope * slope) + walk.toll.cells[size_t(to)]) *
           walk.wear.cells[size_t(to)];
}

static Ways findWays(const Walk &walk, int start) // Dijkstra's algorithm
{
    Ways ways = {std::vector<float>(walk.height.cells.size(), 1e30f),
                 std::vector<int>(walk.height.cells.size(), -1)};
    std::priority_queue<Step> front;
    ways.cost[size_t(start)] = 0;
    front.push({0, start});
    while (!front.empty())
    {
        const Step here = front.top();
        front.pop();
        if (here.cost > ways.cost[size_t(here.place)])
            continue;
        for (int k = 0; k < 9; ++k)
        {
            const int x = here.place % walk.side + k % 3 - 1;
            const int z = here.place / walk.side + k / 3 - 1;
            const int next = z * walk.side + x;
            if (k == 4 || !walk.height.holds(x, z))
                continue;
            const float cost = here.cost + costOf(walk, here.place, next);
            if (cost >= ways.cost[size_t(next)])
                continue;
            ways.cost[size_t(next)] = cost;
            ways.from[size_t(next)] = here.place;
            front.push({cost, next});
        }
    }
    return ways;
}

// Returns the way to the goal and makes it cheaper for the walkers after this one.
static Course wear(Walk &walk, const Ways &ways, int goal)
{
    Course track;
    for (int place = goal; place >= 0; place = ways.from[size_t(place)])
    {
        walk.wear.cells[size_t(place)] = WORN;
        const int x = place % walk.side * walk.pace;
        const int z = place / walk.side * walk.pace;
        track.push_back({walk.plan.toWorld(x), walk.plan.toWorld(z), 0, 0});
    }
    return smoothed(smoothed(track, 2), 2);
}

using Costs = std::vector<std::vector<float>>; // of a walk between each two villages

static Costs costsBetween(const Walk &walk, const std::vector<Place> &villages)
{
    Costs costs;
    costs.reserve(villages.size());
    for (const Place &from : villages)
    {
        const Ways ways = findWays(walk, placeOf(walk, from));
        std::vector<float> row;
        row.reserve(villages.size());
        for (const Place &to : villages)
            row.push_back(ways.cost[size_t(placeOf(walk, to))]);
        costs.push_back(row);
    }
    return costs;
}

namespace
{
struct Link // between two villages
{
    size_t from, to;
};
} // namespace

// The cheapest links that join all villages: Prim's algorithm.
static std::vector<Link> spanningTree(const Costs &costs)
{
    std::vector<Link> tree;
    std::vector<Link> best; // to each village that is not yet joined
    for (size_t i = 1; i < costs.size(); ++i)
        best.push_back({0, i});
    while (!best.empty())
    {
        const auto isCheaper = [&](const Link &a, const Link &b)
        { return costs[a.from][a.to] < costs[b.from][b.to]; };
        const auto next = std::min_element(best.begin(), best.end(), isCheaper);
        const Link link = *next;
        tree.push_back(link);
        best.erase(next);
        for (Link &other : best)
            if (costs[link.to][other.to] < costs[other.from][other.to])
                other.from = link.to;
    }
    return tree;
}

// The costs of walks that follow the links only: the Floyd-Warshall algorithm.
static Costs costsAlong(const std::vector<Link> &links, const Costs &costs)
{
    const size_t n = costs.size();
    Costs along(n, std::vector<float>(n, 1e30f));
    for (const Link &link : links)
        along[link.from][link.to] = along[link.to][link.from] = costs[link.from][link.to];
    for (size_t via = 0; via < n; ++via)
        for (size_t i = 0; i < n; ++i)
            for (size_t k = 0; k < n; ++k)
                along[i][k] = std::min(along[i][k], along[i][via] + along[via][k]);
    return along;
}

// Adds the link between the two villages with the longest detour, again and again. Stops when no
// detour is longer than DETOUR, or after one link for every three villages.
static void addShortCuts(std::vector<Link> &links, const Costs &costs)
{
    for (size_t added = 0; added < costs.size() / 3; ++added)
    {
        const Costs along = costsAlong(links, costs);
        Link best = {0, 0};
        float longest = DETOUR;
        for (size_t i = 0; i < costs.size(); ++i)
            for (size_t k = i + 1; k < costs.size(); ++k)
                if (along[i][k] > longest * costs[i][k])
                {
                    longest = along[i][k] / costs[i][k];
                    best = {i, k};
                }
        if (best.to == 0)
            return;
        links.push_back(best);
    }
}

std::vector<Course> layTracks(const Plan &plan, const Waters &waters, const Field &height,
                              const std::vector<Place> &villages)
{
    Walk walk = surveyGround(plan, waters, height);
    const Costs costs = costsBetween(walk, villages);
    std::vector<Link> links = spanningTree(costs);
    addShortCuts(links, costs);
    std::vector<Course> tracks;
    tracks.reserve(links.size());
    for (const Link &link : links)
        tracks.push_back(wear(walk, findWays(walk, placeOf(walk, villages[link.from])),
                              placeOf(walk, villages[link.to])));
    return tracks;
}

Field wornBy(const Plan &plan, const std::vector<Course> &tracks)
{
    const Nearby near = surveyCourses(plan, tracks, 60);
    Field worn = plan.field();
    worn.paint(
        [&](int x, int z)
        {
            const float x0 = plan.toWorld(x);
            const float z0 = plan.toWorld(z);
            const float width = TRACK_HALF_WIDTH + 4 * plan.waves(x0, z0, 300, 1, 63);
            return soft(width + 13, width - 13, near.distance.at(x, z));
        });
    return worn;
}
