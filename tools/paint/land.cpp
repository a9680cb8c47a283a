#include "land.h"

#include "painters.h"

#include <libnoise/noise.h>

// The old land, until the one grown from a seed takes its place.
constexpr int LAND_SIDE = 501;
constexpr float HALF_LAND = LAND_SIDE * SPACING / 2;

static float toWorld(int sample)
{
    return float(sample) * SPACING - HALF_LAND;
}

namespace
{
struct Range
{
    Box crest;    // a line; x, z of both ends
    float reach;  // from the crest to the foot
    float height; // above the plain
};

struct Lake
{
    float x, z, reachX, reachZ;
};

struct Droplet
{
    float x, z; // samples
    float dirX = 0, dirZ = 0, speed = 1, water = 1, sediment = 0;
};

struct Slope
{
    float height, alongX, alongZ;
};
} // namespace

// Mountains leave a valley along x = 0 in the south, where the game starts, and open into the plain
// about the origin, where the cube comes down.
constexpr Range RANGES[] = {
    {{-1500, -5300, -1350, -3100}, 950, 400}, {{-1350, -3100, -2300, -2300}, 1000, 430},
    {{1650, -5300, 1450, -3300}, 1000, 450},  {{1450, -3300, 2300, -2450}, 1050, 480},
    {{3700, -2300, 3150, 300}, 1250, 520},    {{3150, 300, 4500, 1500}, 1150, 440},
    {{-700, 4750, 1500, 4450}, 1150, 540},    {{1500, 4450, 4600, 4300}, 1200, 450},
    {{-4300, 4400, -3600, 1700}, 1150, 500},  {{-3300, -2300, -4500, -400}, 1100, 400},
    {{4700, 2200, 4450, 3700}, 900, 420},     {{-4750, 500, -4500, 1700}, 800, 380},
    {{-700, 2250, -250, 2480}, 560, 250},     {{1500, 150, 1850, 350}, 560, 230},
    {{-1150, -750, -1500, -950}, 520, 190},   {{900, 3350, 1350, 3150}, 520, 200}};
constexpr Lake LAKES[] = {{-1500, 1000, 760, 520},
                          {2650, 3250, 640, 380},
                          {-3150, -4150, 560, 700},
                          {4150, -4150, 700, 520},
                          {-2350, 4250, 470, 380}};
// Each river and track runs through these points, x and z in turn; rivers run downstream.
constexpr int POINTS = 6;
constexpr float RIVERS[][2 * POINTS] = {
    {-1050, 800, -350, -700, -120, -1950, 200, -3100, -60, -4200, 330, -5300},
    {2350, 3150, 1900, 2250, 1050, 1850, 250, 1750, -500, 1450, -1200, 1150},
    {-1900, 1250, -2350, 2000, -2250, 2700, -2500, 3300, -2400, 3800, -2350, 4250}};
constexpr float TRACKS[][2 * POINTS] = {
    {950, 1250, 560, 700, 480, 150, 60, -700, 180, -1400, 330, -2050},
    {2150, -1250, 1850, -800, 1250, -420, 620, -300, 300, -320, 60, -700},
    {950, 1250, 780, 1500, 330, 1900, 20, 2550, -330, 3050, -800, 3350},
    {2350, 2500, 2100, 2200, 1700, 1700, 1450, 1450, 1200, 1350, 950, 1250},
    {330, -2050, -300, -1950, -900, -1500, -1500, -1400, -2000, -1300, -2500, -1100},
    {-2500, -1100, -2600, -300, -2550, 500, -2750, 1300, -2900, 2000, -3000, 2700},
    {-800, 3350, -1300, 3350, -1800, 3250, -2250, 3050, -2650, 2850, -3000, 2700}};

constexpr float PLAIN_LEVEL = 112;
constexpr float SWELL = 62;         // height of the broad waves of the open land
constexpr float HUMMOCK = 25;       // height of the waves a few cubes long, felt when rolling
constexpr float PLAIN_CALM = 0.65f; // what remains of the waves in the middle of the plain
constexpr float SOFT_CEILING = 470; // peaks above are pressed below HIGHEST
constexpr float HIGHEST = 585;
constexpr float RIVER_BED = 16; // depth below the banks
constexpr float RIVER_HALF_WIDTH = 26;
constexpr float RIVER_BANK = 190;   // from the water to where the valley floor is level again
constexpr float SHORE_RISE = 0.16f; // slope of the ground about a lake
constexpr float STEEP_RISE = 0.66f; // and where mountains stand by the fjord

// Beyond a fjord the land ends in a cliff that holds the cube: it is as steep as the game's
// smoothing leaves anything, and no bend and no corner of it is narrow enough to be a ramp. The
// tool rim tells what a change of these numbers does.
constexpr float CLIFF_BRINK = 620;   // units from the end of the land, on average
constexpr float CLIFF_WIDTH = 25;    // from the brink to the foot
constexpr float CLIFF_CORNER = 1000; // radius; wider and narrower ones let more cubes climb
constexpr float CLIFF_BEND = 350;    // how far the cliff strays, in bends of BEND_LENGTH
constexpr float BEND_LENGTH = 4500;
constexpr float CLIFF_HEADLAND = 180; // and in headlands of HEADLAND_LENGTH
constexpr float HEADLAND_LENGTH = 1000;
constexpr float CLIFF_DIP = 160;    // how far the brink sinks below HEIGHT_RANGE
constexpr float CLIFF_CREST = 300;  // from the brink to where the land falls again, out of sight
constexpr float CLIFF_BACK = 0.6f;  // slope behind
constexpr float CLIFF_SPREAD = 270; // from the brink to the foot once the game has smoothed it
constexpr float FJORD_WIDTH = 320;  // where it is narrowest
constexpr float FJORD_BAYS = 700;   // how much wider it is in bays

constexpr int DROPLETS = 320000; // rain; more cut deeper gullies
constexpr int DROPLET_STEPS = 40;
constexpr float INERTIA = 0.08f; // how much a drop keeps its way
constexpr float CAPACITY = 5;    // soil carried per speed, water and fall
constexpr float DEPOSIT = 0.3f;
constexpr float EROSION = 0.35f;
constexpr float EVAPORATION = 0.02f;
constexpr float FALL_TO_SPEED = 4;

constexpr int SHARPENINGS = 10; // see sharpened
constexpr float TRACK_HALF_WIDTH = 15;

static float rangeHeight(float x, float z)
{
    float height = 0;
    for (const Range &range : RANGES)
    {
        const float d = segmentDistance(x, z, range.crest);
        const float k = soft(range.reach, 0, d);
        height = std::max(height, range.height * k * (0.55f + 0.45f * k));
    }
    return height;
}

static Field rawLand()
{
    noise::module::RidgedMulti ridges;
    ridges.SetSeed(7);
    ridges.SetFrequency(1 / 1500.0);
    ridges.SetOctaveCount(5);
    Field field(LAND_SIDE, LAND_SIDE);
    field.paint(
        [&](int sampleX, int sampleZ)
        {
            const float x = toWorld(sampleX);
            const float z = toWorld(sampleZ);
            const float warpX = x + 420 * fractal(x / 1500, z / 1500, 0, 3, 0.5f, 11);
            const float warpZ = z + 420 * fractal(x / 1500, z / 1500, 0, 3, 0.5f, 21);
            const float mass = rangeHeight(warpX, warpZ);
            const float ridge =
                std::clamp(float(ridges.GetValue(x, 0, z)) * 0.5f + 0.5f, 0.0f, 1.1f);
            const float calm = mix(PLAIN_CALM, 1, soft(1200, 3200, length(x, (z - 900) * 0.6f)));
            const float waves = SWELL * fractal(x / 1300, z / 1300, 0, 2, 0.5f, 41) +
                                HUMMOCK * fractal(x / 340, z / 340, 0, 2, 0.5f, 51);
            const float height = PLAIN_LEVEL + waves * calm * 1.6f + mass * (0.36f + 0.84f * ridge);
            return pressed(height, SOFT_CEILING, HIGHEST);
        });
    return field;
}

static Slope slopeAt(const Field &height, float x, float z)
{
    const int ix = int(x);
    const int iz = int(z);
    const float u = x - float(ix);
    const float w = z - float(iz);
    const float a = height.at(ix, iz);
    const float b = height.at(ix + 1, iz);
    const float c = height.at(ix, iz + 1);
    const float d = height.at(ix + 1, iz + 1);
    return {mix(mix(a, b, u), mix(c, d, u), w), mix(b - a, d - c, w), mix(c - a, d - b, u)};
}

// One step downhill; 0 when the drop leaves the land or stands still.
static int flow(Field &height, Droplet &drop)
{
    const Slope here = slopeAt(height, drop.x, drop.z);
    drop.dirX = drop.dirX * INERTIA - here.alongX * (1 - INERTIA);
    drop.dirZ = drop.dirZ * INERTIA - here.alongZ * (1 - INERTIA);
    const float size = length(drop.dirX, drop.dirZ);
    if (size < 1e-6f)
        return 0;
    const float fromX = drop.x;
    const float fromZ = drop.z;
    drop.dirX /= size;
    drop.dirZ /= size;
    drop.x += drop.dirX;
    drop.z += drop.dirZ;
    if (drop.x < 1 || drop.z < 1 || drop.x > LAND_SIDE - 3 || drop.z > LAND_SIDE - 3)
        return 0;
    const float rise = slopeAt(height, drop.x, drop.z).height - here.height;
    const float capacity = std::max(-rise, 0.01f) * drop.speed * drop.water * CAPACITY;
    float taken = 0;
    if (rise > 0) // in a hollow: fill it, no higher than the way out
        taken = -std::min(rise, drop.sediment);
    else if (drop.sediment > capacity)
        taken = -(drop.sediment - capacity) * DEPOSIT;
    else
        taken = std::min((capacity - drop.sediment) * EROSION, -rise);
    height.at(int(fromX + 0.5f), int(fromZ + 0.5f)) -= taken;
    drop.sediment += taken;
    drop.speed = std::sqrt(std::max(square(drop.speed) - rise * FALL_TO_SPEED, 0.0f));
    drop.water *= 1 - EVAPORATION;
    return 1;
}

static void erode(Field &height)
{
    for (float &h : height.cells)
        h /= HEIGHT_RANGE;
    for (int i = 0; i < DROPLETS; ++i)
    {
        Droplet drop;
        drop.x = 2 + scatter(i, 0, 1) * (LAND_SIDE - 6);
        drop.z = 2 + scatter(i, 1, 1) * (LAND_SIDE - 6);
        for (int step = 0; step < DROPLET_STEPS && flow(height, drop); ++step)
        {
        }
    }
    height = blurred(height, 1); // the drops dig point by point
    for (float &h : height.cells)
        h *= HEIGHT_RANGE;
}

// Units from the end of the land as the cliff follows it.
static float inwardAt(float x, float z)
{
    const float dx = std::fabs(x) - (HALF_LAND - CLIFF_CORNER);
    const float dz = std::fabs(z) - (HALF_LAND - CLIFF_CORNER);
    const float inward = CLIFF_CORNER - length(std::max(dx, 0.0f), std::max(dz, 0.0f)) -
                         std::min(std::max(dx, dz), 0.0f);
    return inward + CLIFF_BEND * fractal(x / BEND_LENGTH, z / BEND_LENGTH, 0, 1, 0.5f, 31) +
           CLIFF_HEADLAND * fractal(x / HEADLAND_LENGTH, z / HEADLAND_LENGTH, 0, 1, 0.5f, 32);
}

// Units inland from the fjord's shore, negative beyond it.
static float shoreDistance(float x, float z)
{
    const float bay = fractal(x / 1100, z / 1100, 0, 4, 0.5f, 33);
    return inwardAt(x, z) - CLIFF_BRINK - CLIFF_WIDTH - FJORD_WIDTH -
           FJORD_BAYS * std::clamp(0.4f + 1.4f * bay, 0.0f, 1.0f);
}

static float lakeDistance(float x, float z) // 0 in the water, else units from the shore
{
    const float waver = 0.5f * fractal(x / 640, z / 640, 0, 4, 0.5f, 61);
    float nearest = HALF_LAND;
    for (const Lake &lake : LAKES)
    {
        const float q = length((x - lake.x) / lake.reachX, (z - lake.z) / lake.reachZ) + waver;
        nearest = std::min(nearest, (q - 1) * std::min(lake.reachX, lake.reachZ));
    }
    return std::max(std::min(nearest, shoreDistance(x, z)), 0.0f);
}

// Distance in units from the nearest of the courses, which noise makes wind.
template <int COUNT>
static float courseDistance(const float (&courses)[COUNT][2 * POINTS], float x, float z, float sway)
{
    const float warpX = x + sway * fractal(x / 520, z / 520, 0, 2, 0.5f, 71);
    const float warpZ = z + sway * fractal(x / 520, z / 520, 0, 2, 0.5f, 81);
    float nearest = HALF_LAND;
    for (const float *p : courses)
        for (int i = 0; i < 2 * POINTS - 2; i += 2)
            nearest = std::min(nearest,
                               segmentDistance(warpX, warpZ, {p[i], p[i + 1], p[i + 2], p[i + 3]}));
    return nearest;
}

// How high the ground may stand at a distance from the water: mountains by the fjord fall to it
// steeply in places.
static float shoreRise(float x, float z, float shore)
{
    const float coast = soft(3500, 4200, std::max(std::fabs(x), std::fabs(z)));
    const float steep = coast * soft(0, 0.25f, fractal(x / 1700, z / 1700, 0, 2, 0.5f, 35));
    return shore * mix(SHORE_RISE, STEEP_RISE, steep) + square(shore / mix(55, 35, steep));
}

static void layWater(Field &height, Field &water)
{
    const Field level = blurred(blurred(height, 5), 5); // river valleys have even floors
    for (int z = 0; z < LAND_SIDE; ++z)
        for (int x = 0; x < LAND_SIDE; ++x)
        {
            const float shore = lakeDistance(toWorld(x), toWorld(z));
            const float river = courseDistance(RIVERS, toWorld(x), toWorld(z), 170);
            float &h = height.at(x, z);
            const float bank = soft(RIVER_BANK, RIVER_HALF_WIDTH, river);
            h = mix(h, std::min(h, level.at(x, z)) - RIVER_BED, bank);
            h = std::max(h, WATER_LEVEL + 6);
            const float ceiling = WATER_LEVEL + shoreRise(toWorld(x), toWorld(z), shore);
            h = shore > 0 ? std::min(h, ceiling) : WATER_LEVEL;
            water.at(x, z) = soft(RIVER_HALF_WIDTH + 14, RIVER_HALF_WIDTH - 14, river);
        }
}

// After the rain, which would wash gullies into it that the cube can climb.
static void raiseCliff(Field &height)
{
    for (int z = 0; z < LAND_SIDE; ++z)
        for (int x = 0; x < LAND_SIDE; ++x)
        {
            const float wx = toWorld(x);
            const float wz = toWorld(z);
            const float behind = CLIFF_BRINK - inwardAt(wx, wz);
            if (behind <= -CLIFF_WIDTH)
                continue;
            const float dip = std::fabs(fractal(wx / 900, wz / 900, 0, 3, 0.5f, 34)) * 2;
            const float top = HEIGHT_RANGE - CLIFF_DIP * std::min(dip, 1.0f) -
                              CLIFF_BACK * std::max(behind - CLIFF_CREST, 0.0f);
            height.at(x, z) = mix(WATER_LEVEL, std::max(top, WATER_LEVEL),
                                  std::min(behind / CLIFF_WIDTH + 1, 1.0f));
        }
}

// What the game does to the heights when it loads them: three sweeps of a running mean in each of
// the four directions.
static void smoothAsTheGame(Field &height)
{
    const int last = LAND_SIDE - 1;
    for (int sweep = 0; sweep < 3; ++sweep)
        for (int pass = 0; pass < 4; ++pass)
            for (int line = 0; line < LAND_SIDE; ++line)
                for (int i = 1; i < LAND_SIDE; ++i)
                {
                    const int to = pass % 2 ? last - i : i;
                    const int from = pass % 2 ? to + 1 : to - 1;
                    float &h = pass < 2 ? height.at(to, line) : height.at(line, to);
                    h = 0.5f * (pass < 2 ? height.at(from, line) : height.at(line, from)) +
                        0.5f * h;
                }
}

// The game's smoothing would wash away ridges and gullies, so the map is exaggerated step by step
// until what is left after the smoothing is as near as can be to what is wanted.
static Field sharpened(const Field &wanted)
{
    Field map = wanted;
    for (int i = 0; i < SHARPENINGS; ++i)
    {
        Field seen = map;
        smoothAsTheGame(seen);
        for (size_t k = 0; k < map.cells.size(); ++k)
            map.cells[k] = std::clamp(map.cells[k] + wanted.cells[k] - seen.cells[k], 0.0f,
                                      HEIGHT_RANGE * 255 / 256);
    }
    return map;
}

// Lakes and the fjord end where the smoothing has spread the foot of a slope into them.
static void fillWater(Land &land)
{
    for (int z = 0; z < LAND_SIDE; ++z)
        for (int x = 0; x < LAND_SIDE; ++x)
        {
            const float wx = toWorld(x);
            const float wz = toWorld(z);
            const float dry = soft(WATER_LEVEL + 4, WATER_LEVEL + 12, land.height.at(x, z));
            const int isCliff = inwardAt(wx, wz) < CLIFF_BRINK + CLIFF_SPREAD;
            const float lake = soft(14, 0, lakeDistance(wx, wz)) * (1 - dry);
            land.water.at(x, z) = isCliff ? lake : std::max(land.water.at(x, z), lake);
            land.cliff.at(x, z) = isCliff ? dry : 0;
        }
}

int noiseSeed(uint32_t landSeed, int use)
{
    return int(scatter(int(landSeed), use, 77) * 16777216.0f);
}

static void layCountries(Land &land)
{
    land.country.assign(COUNTRIES, Field(LAND_SIDE, LAND_SIDE));
    for (int z = 0; z < LAND_SIDE; ++z)
        for (int x = 0; x < LAND_SIDE; ++x)
        {
            const float wx = toWorld(x);
            const float wz = toWorld(z);
            const float waver = 500 * fractal(wx / 900, wz / 900, 0, 3, 0.5f, 91);
            const float u = soft(-300, 300, wx + waver);
            const float v = soft(-300, 300, wz + waver);
            const float away = soft(1300, 2000, length(wx, wz) + waver);
            land.country[COUNTRY_HIGHLAND].at(x, z) = away * u * v;
            land.country[COUNTRY_FOREST].at(x, z) = away * (1 - u) * v;
            land.country[COUNTRY_MARSH].at(x, z) = away * u * (1 - v);
            land.country[COUNTRY_SNOWFIELD].at(x, z) = away * (1 - u) * (1 - v);
            land.country[COUNTRY_MEADOW].at(x, z) = 1 - away;
        }
}

Land makeLand(uint32_t seed, int)
{
    Field wanted = rawLand();
    const Field none(LAND_SIDE, LAND_SIDE);
    Land land = {seed,
                 Grid<unsigned char>(LAND_SIDE, LAND_SIDE),
                 wanted,
                 none,
                 none,
                 none,
                 none,
                 {},
                 {{950, 1250, 250},
                  {-800, 3350, 220},
                  {-2500, -1100, 230},
                  {2350, 2500, 210},
                  {2150, -1250, 230},
                  {-3000, 2700, 200},
                  {330, -2050, 150}}};
    layCountries(land);
    erode(wanted);
    layWater(wanted, land.water);
    raiseCliff(wanted);
    const Field map = sharpened(wanted);
    for (size_t i = 0; i < map.cells.size(); ++i)
    {
        const float grey = std::floor(map.cells[i] / HEIGHT_RANGE * 256 + 0.5f);
        land.map.cells[i] = static_cast<unsigned char>(std::clamp(grey, 0.0f, 255.0f));
        land.height.cells[i] = float(land.map.cells[i]) / 256 * HEIGHT_RANGE;
    }
    smoothAsTheGame(land.height);
    fillWater(land);
    land.track.paint(
        [](int x, int z)
        {
            const float d = courseDistance(TRACKS, toWorld(x), toWorld(z), 130);
            return soft(TRACK_HALF_WIDTH + 13, TRACK_HALF_WIDTH - 13, d);
        });
    return land;
}

int paintLand(const Output &output, const Land &land)
{
    return saveGreys(output, "Map", asImage(land.map));
}
