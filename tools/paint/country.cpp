// The wild ground: grass, woods, rock and snow of each country.
#include "ground.h"

constexpr Colour MEADOW = hex(0x7DB51A);
constexpr Colour LUSH = hex(0x3C961A);
constexpr Colour DRY_GRASS = hex(0xD8B432);
constexpr Colour FLOWERS[] = {hex(0xFFEE3A), hex(0xFFF6E8), hex(0xFF7A2E), hex(0xD88AE8),
                              hex(0xFFD23A)};
constexpr Colour STRAW = hex(0xF6DC72);
constexpr Colour OCHRE = hex(0xE2AE4A);
constexpr Colour RED_EARTH = hex(0xD0683E);
constexpr Colour WASH = hex(0xF0D9A8);
constexpr Colour SALT = hex(0xFFF2DE);
constexpr Colour SHRUB = hex(0x66783A);
constexpr Colour UNDERWOOD = hex(0x123A18);
constexpr Colour CONIFER = hex(0x2E7C38);
constexpr Colour SILVER_FIR = hex(0x2C5E54);
constexpr Colour BIRCH = hex(0xA6B83A);
constexpr Colour AUTUMN = hex(0xD88A34);
constexpr Colour WET_MEADOW = hex(0x8EC83A);
constexpr Colour REED = hex(0xE0C44C);
constexpr Colour REED_GREEN = hex(0x9CBC3C);
constexpr Colour PEAT = hex(0x7C663C);
constexpr Colour POOL = hex(0x30A8D0);
constexpr Colour LILIES = hex(0xF8D2E0);
constexpr Colour HEATH = hex(0xA89A6A);
constexpr Colour ROCK = hex(0xDCA05C);
constexpr Colour ROCK_DARK = hex(0x804C32);
constexpr Colour RED_ROCK[] = {hex(0xCE6234), hex(0xF0A864), hex(0xA84A30), hex(0xF6C888),
                               hex(0xC47444)};
constexpr Colour COLD_ROCK = hex(0x8E8A98);
constexpr Colour COLD_ROCK_DARK = hex(0x4C4A5C);
// Snow is painted very blue, because TexNoise and the sun take blue away. Values above 1 are
// compressed after lighting.
constexpr Colour SNOW = {0.84f, 0.98f, 2.20f};
constexpr Colour SNOW_SHADE = {0.55f, 0.80f, 1.45f};

constexpr float SNOW_LINE = 400;      // height in units from which snow lies everywhere
constexpr float SNOWFIELD_DROP = 420; // units by which the snow line is lower in a snowfield
constexpr float TREE_LINE = 330;      // height in units above which no forest grows
constexpr float ROCK_SLOPE[] = {0.36f, 0.62f}; // rise per run from which grass gives way to rock
constexpr float GULLY_DEPTH = 70;     // units below the surroundings at which a gully is darkest
constexpr float CROWN_CELL = 86;      // units from tree to tree in a wood; smaller crowns blur
constexpr float LONE_TREE_CELL = 240; // units from tree to tree on a meadow
constexpr float TREE_SHADOW = 45;     // length in units of the shadow of a wood
constexpr float BAND_HEIGHT = 21;     // units, thickness of a layer of red rock
constexpr float BRAID_WIDTH = 0.045f; // delta noise below this value is water

Clump clumpAt(const Spot &spot, float cell, float radius, int number)
{
    const int ix = int(std::floor(spot.x / cell));
    const int iz = int(std::floor(spot.z / cell));
    int nearX = ix;
    int nearZ = iz;
    float toX = 3 * cell;
    float toZ = 3 * cell;
    for (int k = 0; k < 9; ++k)
    {
        const int i = ix + k % 3 - 1;
        const int j = iz + k / 3 - 1;
        const float dx =
            spot.x - (float(i) + 0.15f + 0.7f * scatter(i, j, layer(spot, number))) * cell;
        const float dz =
            spot.z - (float(j) + 0.15f + 0.7f * scatter(i, j, layer(spot, number + 1))) * cell;
        if (dx * dx + dz * dz >= toX * toX + toZ * toZ)
            continue;
        nearX = i;
        nearZ = j;
        toX = dx;
        toZ = dz;
    }
    const float level = length(SUN[0], SUN[2]);
    return {length(toX, toZ) / radius, (toX * SUN[0] + toZ * SUN[2]) / (level * radius),
            scatter(nearX, nearZ, layer(spot, number + 2))};
}

float shadowOf(const Clump &clump)
{
    constexpr float REACH = 1.3f; // radii from the middle of the clump to that of its shadow
    const float squared = square(clump.distance) + 2 * REACH * clump.sunward + square(REACH);
    return soft(1.1f, 0.6f, std::sqrt(std::max(squared, 0.0f)));
}

static Colour flowered(Colour grass, const Spot &spot)
{
    const float drift = fractal(spot.x / 330, spot.z / 330, 0, 3, 0.55f, layer(spot, 10));
    const float kind = std::clamp(
        2.0f + 2.4f * noiseAt(spot.x / 620, spot.z / 620, 0, layer(spot, 14)), 0.0f, 3.99f);
    const Colour *first = FLOWERS + int(kind);
    const Colour flower = mix(first[0], first[1], soft(0.4f, 0.6f, kind - std::floor(kind)));
    const float dense = soft(0.1f, 0.34f, drift);
    return mix(grass, flower, spot.grain < 0.2f * dense - 0.12f ? 0.75f * dense : 0.12f * dense);
}

static Colour withLoneTrees(Colour grass, const Spot &spot, float share)
{
    const Clump tree = clumpAt(spot, LONE_TREE_CELL, 36, 20);
    if (tree.pick > share || spot.height > TREE_LINE)
        return grass;
    const Colour crown = mix(FOREST, FOREST_LIGHT, std::clamp(0.5f + tree.sunward, 0.0f, 1.0f));
    return mix(grass * (1 - 0.45f * shadowOf(tree)), crown, soft(1.1f, 0.7f, tree.distance));
}

static Colour meadowColour(const Spot &spot)
{
    const float broad = fractal(spot.x / 700, spot.z / 700, 0, 4, 0.6f, layer(spot, 1));
    Colour colour = mix(MEADOW, LUSH, soft(0.35f, 0.75f, spot.moisture + 0.5f * broad));
    const float dry = soft(0.1f, 0.5f, broad - spot.moisture * 0.35f + spot.height / 1300);
    colour = mix(colour, DRY_GRASS, 0.75f * dry) * (1 + 0.1f * spot.rough + 0.1f * spot.grain);
    return withLoneTrees(flowered(colour, spot), spot, 0.4f);
}

// Red rock in level layers. Each layer has its own colour.
static Colour redRock(const Spot &spot)
{
    const float tilt = 16 * fractal(spot.x / 900, spot.z / 900, 0, 2, 0.5f, layer(spot, 30));
    const float level = (spot.height + tilt + 3 * spot.rough) / BAND_HEIGHT;
    const int band = int(std::floor(level));
    const float blend = soft(0.3f, 0.7f, level - float(band));
    const auto colourOf = [&](int k)
    { return RED_ROCK[int(scatter(k, 0, layer(spot, 32)) * 4.99f)]; };
    return mix(colourOf(band), colourOf(band + 1), blend) * (1 + 0.16f * spot.grain);
}

static Colour dryGround(const Spot &spot)
{
    const float broad = fractal(spot.x / 600, spot.z / 600, 0, 4, 0.6f, layer(spot, 33));
    Colour colour = mix(STRAW, OCHRE, soft(-0.2f, 0.35f, broad + 0.3f * spot.grain));
    const float earth = fractal(spot.x / 310, spot.z / 310, 0, 3, 0.6f, layer(spot, 37));
    colour = mix(colour, RED_EARTH, 0.8f * soft(0.08f, 0.3f, earth + 0.15f * spot.grain));
    return mix(colour, MEADOW, 0.7f * soft(0.45f, 0.8f, spot.moisture));
}

static Colour highlandColour(const Spot &spot)
{
    const float pan = fractal(spot.x / 680, spot.z / 680, 0, 3, 0.5f, layer(spot, 44));
    const float salt = soft(0.2f, 0.3f, pan + 0.05f * spot.rough) * soft(0.11f, 0.05f, spot.slope);
    Colour colour = mix(dryGround(spot), SALT * (1 + 0.12f * spot.grain), 0.85f * salt);
    colour = mix(colour, WASH, 0.8f * soft(4, 12, spot.hollow + 4 * spot.rough));
    colour = mix(colour, redRock(spot), soft(0.13f, 0.25f, spot.slope + 0.04f * spot.rough));
    const Clump shrub = clumpAt(spot, 105, 24, 40);
    if (shrub.pick > 0.5f)
        return colour;
    colour = colour * (1 - 0.3f * shadowOf(shrub));
    return mix(colour, SHRUB * (1 + 0.3f * shrub.sunward), 0.9f * soft(1.2f, 0.6f, shrub.distance));
}

static Colour woodFloor(const Spot &spot)
{
    return flowered(mix(LUSH, FOREST_LIGHT, 0.5f + 0.4f * spot.rough) * (1 + 0.15f * spot.grain),
                    spot);
}

// How far the nearest braid of the delta is: 0 in its middle, 1 at its bank. Braids widen to
// lagoons here and there and avoid slopes.
static float braidAt(const Spot &spot)
{
    const float bend = 0.5f * noiseAt(spot.x / 260, spot.z / 260, 0, layer(spot, 50));
    const float x = spot.x / 620 + bend;
    const float z = spot.z / 620 - bend;
    const float middle =
        std::min(std::fabs(noiseAt(x, z, 0, layer(spot, 51))),
                 std::fabs(noiseAt(x * 1.7f, z * 1.7f, 0, layer(spot, 52))) * 0.8f);
    const float lagoon =
        soft(0, 0.4f, fractal(spot.x / 1100, spot.z / 1100, 0, 2, 0.5f, layer(spot, 57)));
    return (middle + 2 * std::max(spot.slope - 0.05f, 0.0f)) / (BRAID_WIDTH * (1 + 1.8f * lagoon));
}

static Colour marshColour(const Spot &spot)
{
    const float braid = braidAt(spot);
    const float patch = fractal(spot.x / 240, spot.z / 240, 0, 3, 0.6f, layer(spot, 53));
    const float stalks = noiseAt(spot.x / 34, spot.z / 90, 0, layer(spot, 56)) + spot.grain;
    Colour colour = mix(WET_MEADOW, LUSH, soft(-0.1f, 0.3f, patch)) * (1 + 0.12f * stalks);
    const Colour reeds = mix(REED_GREEN, REED, std::clamp(0.5f + 0.8f * stalks, 0.0f, 1.0f));
    const float bed = soft(7, 4, braid + 7 * patch) * soft(0.25f, 0.12f, spot.slope);
    colour = mix(colour, reeds, 0.9f * bed);
    colour = mix(colour, PEAT, 0.8f * soft(2.1f, 1.3f, braid));
    const Colour pool = spot.grain > 0.475f ? LILIES : POOL * (1 + 0.2f * spot.grain);
    return mix(colour, pool, soft(1.3f, 0.8f, braid));
}

static Colour heathColour(const Spot &spot)
{
    return mix(HEATH, DRY_GRASS, 0.3f + 0.3f * spot.rough) * (1 + 0.2f * spot.grain);
}

// 0 open ground .. 1 wood at (x, z), a place near the sample. Only the noise is taken at this
// place; all else is that of the sample.
static float woodAt(const Spot &spot, float x, float z)
{
    const float wood = fractal(x / 900, z / 900, 0, 4, 0.6f, layer(spot, 60));
    const float *w = spot.weights;
    const float wanted = wood + 0.3f * (spot.moisture - 0.5f) +
                         0.4f * soft(0.1f, 0.4f, spot.slope) + 0.62f * w[COUNTRY_FOREST] +
                         0.12f * w[COUNTRY_SNOWFIELD] - 0.8f * w[COUNTRY_HIGHLAND] -
                         0.1f * w[COUNTRY_MARSH];
    return soft(0.2f, 0.3f, wanted) *
           soft(TREE_LINE + 40, TREE_LINE - 30, spot.height + 50 * spot.rough);
}

static Colour crownColour(const Spot &spot, const Clump &tree)
{
    const float wet = spot.weights[COUNTRY_MARSH];
    const float kind = tree.pick + 0.5f * noiseAt(spot.x / 420, spot.z / 420, 0, layer(spot, 70));
    const Colour dark = mix(CONIFER, FOREST_LIGHT * 1.15f, soft(0.45f, 0.55f, kind));
    const Colour bright = mix(BIRCH, AUTUMN, tree.pick > 0.93f ? 1 - wet : 0);
    const Colour leaves = mix(dark, bright, soft(1, 1.08f, kind + 0.5f * wet));
    const Colour fir = mix(SILVER_FIR, SNOW, 0.8f * soft(0, 0.5f, tree.sunward));
    return mix(leaves, fir, soft(0.3f, 0.5f, spot.weights[COUNTRY_SNOWFIELD]));
}

static Colour wooded(Colour ground, const Spot &spot)
{
    const float here = woodAt(spot, spot.x, spot.z);
    const float toSun = woodAt(spot, spot.x + TREE_SHADOW * SUN[0], spot.z + TREE_SHADOW * SUN[2]);
    ground = ground * (1 - 0.4f * std::max(toSun - here, 0.0f));
    if (here <= 0)
        return ground;
    const Clump tree = clumpAt(spot, CROWN_CELL, 0.62f * CROWN_CELL, 61);
    const float light = 0.95f + 0.62f * tree.sunward + 0.12f * spot.grain;
    const Colour crown = crownColour(spot, tree) * std::clamp(light, 0.4f, 1.55f);
    const Colour floor = mix(UNDERWOOD, ground * 0.7f, spot.weights[COUNTRY_SNOWFIELD]);
    const Colour canopy = mix(floor, crown, soft(1.25f, 0.75f, tree.distance));
    return mix(ground, canopy, here);
}

static Colour rockColour(const Spot &spot)
{
    const float strata =
        0.55f + 0.8f * noiseAt(spot.height / 26, spot.rough * 1.2f, 0, layer(spot, 80));
    const float light = std::clamp(strata + 0.6f * spot.grain, 0.0f, 1.0f);
    const Colour common = mix(ROCK_DARK, ROCK, light);
    const Colour cold = mix(COLD_ROCK_DARK, COLD_ROCK, light);
    const Colour rock = mix(common, cold, spot.weights[COUNTRY_SNOWFIELD]);
    return mix(rock, redRock(spot), spot.weights[COUNTRY_HIGHLAND]);
}

static Colour rocky(Colour ground, const Spot &spot)
{
    const float bare = spot.slope + 0.10f * spot.rough + soft(300, 480, spot.height) * 0.22f;
    const float scree = soft(0.26f, 0.42f, bare) * (1 - spot.weights[COUNTRY_HIGHLAND]);
    ground = mix(ground, SCREE * (1 + 0.2f * spot.grain), scree);
    return mix(ground, rockColour(spot),
               soft(ROCK_SLOPE[0], ROCK_SLOPE[1], bare + 0.1f * spot.grain));
}

// Snow with ripples and drifts that the wind has made. It is blue where little sun reaches it.
Colour snowColour(const Spot &spot)
{
    const float along = spot.x + 0.35f * spot.z;
    const float across = spot.z - 0.35f * spot.x;
    const float ripple = noiseAt(along / 330, across / 75, 0, layer(spot, 90)) +
                         0.6f * noiseAt(along / 150, across / 38, 0, layer(spot, 91));
    const float drift = fractal(along / 900, across / 420, 0, 2, 0.5f, layer(spot, 92));
    const float light = spot.facing + 0.55f * ripple + 0.7f * drift - spot.hollow / 60;
    return mix(SNOW_SHADE, SNOW, soft(0.3f, 1.2f, light));
}

static Colour snowy(Colour ground, const Spot &spot)
{
    const float field = spot.weights[COUNTRY_SNOWFIELD];
    const float level = spot.height + 45 * spot.rough + 0.8f * spot.hollow - 70 * spot.slope +
                        SNOWFIELD_DROP * field - 90 * spot.weights[COUNTRY_HIGHLAND];
    const float ridge = spot.slope + 0.14f * spot.rough + 0.1f * spot.grain - spot.hollow / 90;
    const float lies =
        soft(SNOW_LINE - 14, SNOW_LINE + 14, level) * (1 - 0.85f * soft(0.42f, 0.62f, ridge));
    return mix(ground, snowColour(spot), lies);
}

Colour wildColour(const Spot &spot)
{
    constexpr Colour (*GROUNDS[COUNTRIES])(const Spot &) = {meadowColour, highlandColour, woodFloor,
                                                            marshColour, heathColour};
    Colour colour = {};
    for (int k = 0; k < COUNTRIES; ++k)
        if (spot.weights[k] > 0.01f)
            colour = colour + GROUNDS[k](spot) * spot.weights[k];
    const bool fir = spot.weights[COUNTRY_SNOWFIELD] > 0.4f; // firs are painted over the snow
    if (!fir)
        colour = wooded(colour, spot);
    colour = snowy(rocky(colour, spot) * (1 - std::clamp(spot.hollow / GULLY_DEPTH, -0.22f, 0.30f)),
                   spot);
    return fir ? wooded(colour, spot) : colour;
}
