#include "water.h"

#include "coast.h"
#include "drainage.h"

constexpr float RIVER_BED = 16;        // depth of a river below its banks
constexpr float RIVER_HALF_WIDTH = 20; // half of a river's width at its source
constexpr float RIVER_WIDENING = 18;   // added to it where the river carries FULL_FLOW
constexpr float FULL_FLOW = 40000;     // samples that drain to the river there
constexpr float SOURCE_FLOW = 3200;    // flow at which a river begins
constexpr int SHORTEST_RIVER = 36;     // samples
constexpr float MOUTH = 40;            // units by which a river's arm extends into the fjord
constexpr size_t SHORTEST_ARM = 24;    // samples, length of an arm in a delta
constexpr float RIVER_BANK = 190;      // from the middle of a river to where its banks end
constexpr float MEANDER = 110;         // sway of rivers that have hardly any fall
constexpr float WHITE_WATER[] = {0.25f, 0.42f}; // slope of the course: none .. all white
constexpr float SHORE_RISE = 0.16f;             // slope of the ground around a lake
constexpr float STEEP_RISE = 0.66f;             // slope where mountains meet the fjord
constexpr int SMALLEST_LAKE = 90;               // samples
constexpr float SHALLOWEST_LAKE = 12;           // depth below the outlet, at the deepest place
constexpr int LARGEST_LAKE = 2600; // samples; the outlet of a larger lake is cut deeper
// Depth of the water that a cut leaves in a too large lake. While a lake is too large, the next
// depth is tried.
constexpr float CUTS[] = {42, 28, 15, 6, 2};
constexpr float CUT_SLOPE = 0.42f;  // slope of the sides of a cut
constexpr float CUT_REACH = 700;    // units from a cut within which the ground is lowered
constexpr float LAKE_DEPTH = 3;     // a sample this far below the outlet belongs to the lake
constexpr float LAKE_FLOW = 1500;   // lakes with less water dry up
constexpr float SLIGHT_RISE = 1.5f; // units by which a river can run uphill without being noticed
constexpr float DEEPENING = 1.2f;   // units by which a bed is lowered for each unit that it rises
constexpr float FAR_SHORE = 2000;   // distance where no water is known
constexpr float LANDING_WALL = 90;  // height of the imaginary wall in the function roughened

// More rain falls on higher ground, and less on the dry highland.
static Field rainOn(const std::vector<Field> &countries, const Field &height)
{
    Field rain = height;
    for (size_t i = 0; i < rain.cells.size(); ++i)
        rain.cells[i] = 0.8f + height.cells[i] / 500 - 0.75f * countries[COUNTRY_HIGHLAND].cells[i];
    return rain;
}

// How high the ground may be at a distance from the water.
static float shoreRise(float distance, float steepness)
{
    return distance * mix(SHORE_RISE, STEEP_RISE, steepness) +
           square(distance / mix(55, 35, steepness));
}

// Slopes the land to the fjord. Fills the fjord, and ponds in the marsh to the same level.
static Grid<char> meetFjord(const Plan &plan, const std::vector<Field> &countries, Field &height,
                            Field &standing)
{
    Grid<char> sea(plan.side, plan.side);
    for (int z = 0; z < plan.side; ++z)
        for (int x = 0; x < plan.side; ++x)
        {
            const float wx = plan.toWorld(x);
            const float wz = plan.toWorld(z);
            const float shore = shoreDistance(plan, wx, wz);
            float &h = height.at(x, z);
            const int isPond = h < WATER_LEVEL + 3 && countries[COUNTRY_MARSH].at(x, z) > 0.6f;
            sea.at(x, z) = shore <= 0;
            standing.at(x, z) = shore <= 0 || isPond ? WATER_LEVEL : 0;
            h = std::max(h, WATER_LEVEL + 5);
            if (standing.at(x, z) > 0)
                h = WATER_LEVEL;
            else
                h = std::min(h, WATER_LEVEL + shoreRise(shore, coastSteepness(plan, wx, wz)));
        }
    return sea;
}

// The samples of the hollow that `first` belongs to.
static std::vector<int> hollowAbout(const Field &depth, const Field &level, int first,
                                    std::vector<char> &isSeen)
{
    std::vector<int> found = {first};
    isSeen[size_t(first)] = 1;
    for (size_t i = 0; i < found.size(); ++i)
        for (const int step : {-1, 1, -depth.width, depth.width})
        {
            const int next = found[i] + step; // inside the land: hollows never reach its edge
            if (isSeen[size_t(next)] || depth.cells[size_t(next)] < LAKE_DEPTH ||
                level.cells[size_t(next)] != level.cells[size_t(first)])
                continue;
            isSeen[size_t(next)] = 1;
            found.push_back(next);
        }
    return found;
}

using Hollow = std::vector<int>; // its samples; the first one is at the outlet

static std::vector<Hollow> findHollows(const Drainage &drainage, const Field &height)
{
    Field depth = drainage.level;
    for (size_t i = 0; i < depth.cells.size(); ++i)
        depth.cells[i] -= height.cells[i];
    std::vector<char> isSeen(depth.cells.size());
    std::vector<Hollow> hollows;
    for (const int cell : drainage.order)
        if (!isSeen[size_t(cell)] && depth.cells[size_t(cell)] >= LAKE_DEPTH)
            hollows.push_back(hollowAbout(depth, drainage.level, cell, isSeen));
    return hollows;
}

static int bottomOf(const Hollow &hollow, const Field &height)
{
    const auto isLower = [&](int a, int b)
    { return height.cells[size_t(a)] < height.cells[size_t(b)]; };
    return *std::min_element(hollow.begin(), hollow.end(), isLower);
}

// The line of a cut that drains a hollow until the water is `depth` units deep.
static Course cutThrough(const Plan &plan, const Drainage &drainage, const Field &height,
                         int bottom, float depth)
{
    Course cut;
    float level = height.cells[size_t(bottom)] + depth;
    for (int cell = bottom; cell >= 0; cell = drainage.toward[size_t(cell)])
    {
        const float ground = height.cells[size_t(cell)];
        if (drainage.level.cells[size_t(cell)] <= level)
            break;
        cut.push_back({plan.toWorld(cell % plan.side), plan.toWorld(cell / plan.side),
                       std::min(level, ground), 0});
        level -= 0.02f * SPACING;
    }
    return smoothed(cut, 4);
}

static std::vector<Course> cutsOfLargeHollows(const Plan &plan, const Drainage &drainage,
                                              const Field &height, float depth)
{
    std::vector<Course> cuts;
    for (const Hollow &hollow : findHollows(drainage, height))
        if (int(hollow.size()) > LARGEST_LAKE)
            cuts.push_back(cutThrough(plan, drainage, height, bottomOf(hollow, height), depth));
    return cuts;
}

static void dig(const Plan &plan, const std::vector<Course> &cuts, Field &height)
{
    const Nearby near = surveyCourses(plan, cuts, CUT_REACH);
    for (size_t i = 0; i < height.cells.size(); ++i)
        if (near.distance.cells[i] < CUT_REACH)
            height.cells[i] =
                std::min(height.cells[i], near.level.cells[i] + CUT_SLOPE * near.distance.cells[i]);
}

static int isLake(const Hollow &hollow, const Drainage &drainage, const Field &height)
{
    const size_t bottom = size_t(bottomOf(hollow, height));
    const float depth = drainage.level.cells[bottom] - height.cells[bottom];
    return int(hollow.size()) >= SMALLEST_LAKE && depth >= SHALLOWEST_LAKE &&
           drainage.flow.cells[size_t(hollow[0])] >= LAKE_FLOW;
}

// Makes lakes of the deep hollows through which much water flows.
static void fillLakes(const Drainage &drainage, const Field &height, Field &standing)
{
    for (const Hollow &hollow : findHollows(drainage, height))
    {
        if (!isLake(hollow, drainage, height))
            continue;
        for (const int cell : hollow)
            standing.cells[size_t(cell)] =
                std::max(drainage.level.cells[size_t(cell)] - RIVER_BED, WATER_LEVEL);
    }
}

namespace
{
struct Streams // the way of the water, sample by sample
{
    std::vector<int> above;  // the next sample on the longest way upstream, or -1
    std::vector<int> length; // samples to the source on that way, 0 where no stream is
};
} // namespace

static Streams findStreams(const Drainage &drainage)
{
    const size_t count = drainage.toward.size();
    Streams streams = {std::vector<int>(count, -1), std::vector<int>(count, 0)};
    for (size_t i = drainage.order.size(); i-- > 0;)
    {
        const size_t cell = size_t(drainage.order[i]);
        const int below = drainage.toward[cell];
        if (drainage.flow.cells[cell] < SOURCE_FLOW || below < 0)
            continue;
        streams.length[cell] += 1;
        if (streams.length[cell] <= streams.length[size_t(below)])
            continue;
        streams.length[size_t(below)] = streams.length[cell];
        streams.above[size_t(below)] = int(cell);
    }
    return streams;
}

// The course from the source to the mouth, and to the next sample below the mouth.
static Course courseTo(const Plan &plan, const Drainage &drainage, const Streams &streams,
                       int mouth)
{
    Course course;
    for (int cell = drainage.toward[size_t(mouth)], next = mouth; cell >= 0;
         cell = next, next = next < 0 ? -1 : streams.above[size_t(next)])
    {
        const float share = std::min(drainage.flow.cells[size_t(cell)] / FULL_FLOW, 1.0f);
        course.push_back({plan.toWorld(cell % plan.side), plan.toWorld(cell / plan.side),
                          drainage.level.cells[size_t(cell)],
                          RIVER_HALF_WIDTH + RIVER_WIDENING * std::sqrt(share)});
    }
    std::reverse(course.begin(), course.end());
    return course;
}

// Bends a river where the land is flat. Its ends stay where they are.
static void meander(const Plan &plan, Course &course)
{
    const int last = int(course.size()) - 1;
    for (int i = 0; i <= last; ++i)
    {
        CoursePoint &p = course[size_t(i)];
        const float fall =
            course[size_t(std::max(i - 8, 0))].level - course[size_t(std::min(i + 8, last))].level;
        const float ends = std::min(float(std::min(i, last - i)) / 12, 1.0f);
        const float sway = MEANDER * ends * soft(0.08f, 0, fall / (16 * SPACING));
        const float x = p.x;
        p.x += sway * plan.waves(x, p.z, 460, 2, 51);
        p.z += sway * plan.waves(x, p.z, 460, 2, 52);
    }
}

// Lowers the levels of the course from those of the banks to those of the bed. The bed never rises
// downstream and is nowhere below the mouth.
static void digBed(Course &course, float mouthLevel)
{
    float level = HEIGHT_RANGE;
    for (size_t i = 0; i < course.size(); ++i)
    {
        const float depth = RIVER_BED * std::min(float(i) / 16, 1.0f);
        level = std::min(level, course[i].level - depth);
        course[i].level = std::max(level, mouthLevel);
    }
}

static Course shapeRiver(const Plan &plan, const Course &raw, const Course *into)
{
    Course course = smoothed(smoothed(raw, 7), 7);
    meander(plan, course);
    CoursePoint &mouth = course.back();
    float mouthLevel = WATER_LEVEL;
    if (into)
    {
        const CoursePoint meeting = nearestPoint(*into, mouth.x, mouth.z);
        mouth = {meeting.x, meeting.z, mouth.level, mouth.halfWidth};
        mouthLevel = meeting.level;
    }
    course = smoothed(course, 3);
    digBed(course, mouthLevel);
    return course;
}

// Each river comes before those that flow into it.
static std::vector<Course> traceRivers(const Plan &plan, const Drainage &drainage,
                                       const Grid<char> &sea)
{
    const Streams streams = findStreams(drainage);
    std::vector<Course> rivers;
    std::vector<int> riverAt(drainage.toward.size(), -1);
    for (const int cell : drainage.order)
    {
        const int below = drainage.toward[size_t(cell)];
        if (streams.length[size_t(cell)] < SHORTEST_RIVER || below < 0 || sea.cells[size_t(cell)] ||
            (!sea.cells[size_t(below)] && streams.above[size_t(below)] == cell))
            continue;
        const int into = riverAt[size_t(below)];
        for (int up = cell; up >= 0; up = streams.above[size_t(up)])
            riverAt[size_t(up)] = int(rivers.size());
        rivers.push_back(shapeRiver(plan, courseTo(plan, drainage, streams, cell),
                                    into < 0 ? nullptr : &rivers[size_t(into)]));
    }
    return rivers;
}

// An arm that leaves the river at its point `first`. At the mouth, the arm is about 0.8 * drift
// units to the side of the river.
static Course armOf(const Course &river, size_t first, float drift)
{
    Course arm;
    const CoursePoint &start = river[first];
    const CoursePoint &mouth = river.back();
    const float span = std::max(length(mouth.x - start.x, mouth.z - start.z), SPACING);
    const float sideX = (mouth.z - start.z) / span;
    const float sideZ = (start.x - mouth.x) / span;
    for (size_t i = first; i < river.size(); ++i)
    {
        const float aside = drift * soft(-0.4f, 1, float(i - first) / float(river.size() - first)) -
                            drift * soft(-0.4f, 1, 0);
        arm.push_back({river[i].x + aside * sideX, river[i].z + aside * sideZ, river[i].level,
                       0.75f * river[i].halfWidth});
    }
    return arm;
}

static int isInMarsh(const Plan &plan, const std::vector<Field> &countries, const CoursePoint &p)
{
    return countries[COUNTRY_MARSH].at(plan.toSample(p.x), plan.toSample(p.z)) > 0.5f;
}

// The arm, cut off in the fjord. Empty if the arm leaves the marsh before it reaches the fjord.
static Course armToFjord(const Plan &plan, const std::vector<Field> &countries, const Course &arm)
{
    Course result;
    for (const CoursePoint &p : arm)
    {
        result.push_back(p);
        if (shoreDistance(plan, p.x, p.z) < -MOUTH)
            return result;
        if (!isInMarsh(plan, countries, p))
            return {};
    }
    return {};
}

// Adds arms to the rivers that reach the fjord through marsh.
static void splitRivers(const Plan &plan, const std::vector<Field> &countries,
                        std::vector<Course> &rivers)
{
    const size_t count = rivers.size();
    for (size_t i = 0; i < count; ++i)
    {
        const Course river = rivers[i];
        size_t first = river.size() - 1;
        while (first > 0 && isInMarsh(plan, countries, river[first]))
            --first;
        for (const float drift : {-0.6f, -0.3f, 0.3f, 0.6f})
        {
            const size_t from =
                river.size() - size_t(float(river.size() - first) * (0.4f + std::fabs(drift)));
            const float reach = float(river.size() - from) * SPACING;
            const Course arm = armToFjord(plan, countries, armOf(river, from, drift * reach));
            if (arm.size() > SHORTEST_ARM)
                rivers.push_back(arm);
        }
    }
}

namespace
{
struct NearestWater // found in sweeps: each sample takes over the best of its neighbours
{
    const Plan &plan;
    std::vector<int> cell; // the nearest water of each sample; -1: none is known yet

    float distance(int x, int z, int to) const
    {
        return to < 0 ? FAR_SHORE
                      : length(float(x - to % plan.side), float(z - to / plan.side)) * SPACING;
    }
    void ask(int x, int z, int nx, int nz)
    {
        if (nx < 0 || nz < 0 || nx >= plan.side || nz >= plan.side)
            return;
        const int theirs = cell[size_t(nz) * size_t(plan.side) + size_t(nx)];
        int &mine = cell[size_t(z) * size_t(plan.side) + size_t(x)];
        if (distance(x, z, theirs) < distance(x, z, mine))
            mine = theirs;
    }
    void sweep(int step) // 1 to sweep up, -1 to sweep down
    {
        const int start = step > 0 ? 0 : plan.side - 1;
        for (int z = start; z >= 0 && z < plan.side; z += step)
        {
            for (int i = 0; i < plan.side; ++i)
                for (int k = -1; k <= 1; ++k)
                    ask(start + step * i, z, start + step * i + k, z - step);
            for (int i = 0; i < plan.side; ++i)
                ask(start + step * i, z, start + step * (i - 1), z);
            for (int i = plan.side - 1; i >= 0; --i)
                ask(start + step * i, z, start + step * (i + 1), z);
        }
    }
};
} // namespace

static void surveyShores(const Plan &plan, const Field &standing, Waters &waters)
{
    NearestWater nearest = {plan, std::vector<int>(standing.cells.size(), -1)};
    for (size_t i = 0; i < standing.cells.size(); ++i)
        if (standing.cells[i] > 0)
            nearest.cell[i] = int(i);
    nearest.sweep(1);
    nearest.sweep(-1);
    for (int z = 0; z < plan.side; ++z)
        for (int x = 0; x < plan.side; ++x)
        {
            const int water = nearest.cell[size_t(z) * size_t(plan.side) + size_t(x)];
            waters.shore.at(x, z) = nearest.distance(x, z, water);
            waters.shoreLevel.at(x, z) = water < 0 ? WATER_LEVEL : standing.cells[size_t(water)];
        }
}

static void carve(const Plan &plan, const Waters &waters, Field &height)
{
    for (int z = 0; z < plan.side; ++z)
        for (int x = 0; x < plan.side; ++x)
        {
            float &h = height.at(x, z);
            const float bank = soft(RIVER_BANK, waters.river.halfWidth.at(x, z) + 6,
                                    waters.river.distance.at(x, z));
            h = mix(h, waters.river.level.at(x, z), bank);
            const float shore = waters.shore.at(x, z);
            const float steep = waters.shoreLevel.at(x, z) > WATER_LEVEL
                                    ? 0.15f
                                    : coastSteepness(plan, plan.toWorld(x), plan.toWorld(z));
            const float level = waters.shoreLevel.at(x, z);
            h = shore > 0 ? std::min(h, level + shoreRise(shore, steep)) : level;
        }
}

// Ponds of the marsh have the level of the fjord. Those beside a higher river are removed.
static void drainPonds(const Nearby &river, const Grid<char> &sea, Field &standing)
{
    for (size_t i = 0; i < standing.cells.size(); ++i)
        if (!sea.cells[i] && standing.cells[i] <= WATER_LEVEL &&
            river.level.cells[i] > WATER_LEVEL + 0.5f)
            standing.cells[i] = 0;
}

// Returns the heights by which the way of the streams is found. Slight waves make the streams bend
// on even ground. An imaginary wall leads them around the landing place.
static Field roughened(const Plan &plan, const Field &height)
{
    Field rough = height;
    for (int z = 0; z < plan.side; ++z)
        for (int x = 0; x < plan.side; ++x)
        {
            const float wx = plan.toWorld(x);
            const float wz = plan.toWorld(z);
            const float wall = segmentDistance(wx, wz, {0, -150, 0, 2 * LANDING_Z + 150});
            if (height.at(x, z) > WATER_LEVEL)
                rough.at(x, z) +=
                    3 + 5 * plan.waves(wx, wz, 300, 2, 53) + LANDING_WALL * soft(800, 450, wall);
        }
    return rough;
}

// Drains the land. Cuts deeper outlets for hollows that would become too large lakes.
static Drainage drainWell(const Plan &plan, const Grid<char> &sea, const Field &rain, Field &height,
                          Field &rough)
{
    rough = roughened(plan, height);
    Drainage drainage = drain(rough, sea, rain);
    for (const float depth : CUTS)
    {
        const std::vector<Course> cuts = cutsOfLargeHollows(plan, drainage, rough, depth);
        if (cuts.empty())
            break;
        dig(plan, cuts, height);
        rough = roughened(plan, height);
        drainage = drain(rough, sea, rain);
    }
    return drainage;
}

Waters layWater(const Plan &plan, const std::vector<Field> &countries, Field &height)
{
    Field standing = plan.field();
    const Grid<char> sea = meetFjord(plan, countries, height, standing);
    Field rough = height;
    const Drainage drainage = drainWell(plan, sea, rainOn(countries, height), height, rough);
    Waters waters = {traceRivers(plan, drainage, sea),
                     {plan.field(), plan.field(), plan.field()},
                     plan.field(),
                     plan.field()};
    fillLakes(drainage, rough, standing);
    splitRivers(plan, countries, waters.rivers);
    waters.river = surveyCourses(plan, waters.rivers, RIVER_BANK + 60);
    drainPonds(waters.river, sea, standing);
    surveyShores(plan, standing, waters);
    carve(plan, waters, height);
    return waters;
}

// A copy of the river. The level of each point is its height above the lowest ground upstream.
static Course risesOf(const Course &river, const Field &height)
{
    Course rises = river;
    float lowest = HEIGHT_RANGE;
    for (CoursePoint &p : rises)
    {
        const float seen = std::max(heightAt(height, p.x, p.z), WATER_LEVEL);
        lowest = std::min(lowest, seen);
        p.level = seen - lowest;
    }
    return rises;
}

int deepenBeds(const Plan &plan, const Waters &waters, const Field &height, Field &wanted)
{
    std::vector<Course> rises;
    rises.reserve(waters.rivers.size());
    for (const Course &river : waters.rivers)
        rises.push_back(risesOf(river, height));
    const Nearby near = surveyCourses(plan, rises, RIVER_BANK);
    float highest = 0;
    for (size_t i = 0; i < wanted.cells.size(); ++i)
    {
        const float bank = soft(RIVER_BANK, near.halfWidth.cells[i], near.distance.cells[i]);
        highest = std::max(highest, near.level.cells[i] * bank);
        wanted.cells[i] -= DEEPENING * near.level.cells[i] * bank;
    }
    return highest > SLIGHT_RISE;
}

Field waterSurface(const Plan &plan, const Waters &waters, const Field &height)
{
    Field water = plan.field();
    water.paint(
        [&](int x, int z)
        {
            const float above = height.at(x, z) - waters.shoreLevel.at(x, z);
            const float lake = soft(24, 0, waters.shore.at(x, z)) * soft(12, 4, above);
            const float width = waters.river.halfWidth.at(x, z);
            const float river =
                width > 0 ? soft(width + 14, width - 14, waters.river.distance.at(x, z)) : 0;
            return isCliff(plan, plan.toWorld(x), plan.toWorld(z)) ? lake : std::max(lake, river);
        });
    return water;
}

static float slopeOf(const Course &course, size_t i)
{
    const size_t first = i < 3 ? 0 : i - 3;
    const size_t last = std::min(i + 3, course.size() - 1);
    return (course[first].level - course[last].level) / (float(last - first) * SPACING);
}

Field riverFalls(const Plan &plan, const Waters &waters)
{
    std::vector<Course> steepness = waters.rivers; // copies whose levels are slopes
    for (size_t k = 0; k < steepness.size(); ++k)
        for (size_t i = 0; i < steepness[k].size(); ++i)
            steepness[k][i].level = slopeOf(waters.rivers[k], i);
    const Nearby near = surveyCourses(plan, steepness, 60);
    Field fall = plan.field();
    fall.paint(
        [&](int x, int z)
        {
            const float width = near.halfWidth.at(x, z) + 4;
            return soft(width + 12, width - 12, near.distance.at(x, z)) *
                   soft(WHITE_WATER[0], WHITE_WATER[1], near.level.at(x, z));
        });
    return fall;
}
