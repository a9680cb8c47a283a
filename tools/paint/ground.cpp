// The land's colours with the sun painted into them, and the texture that is repeated over them.
#include "ground.h"

#include "painters.h"
#include "progress.h"

constexpr Colour SUNLIGHT = {0.84f, 0.80f, 0.70f};
constexpr Colour SKYLIGHT = {0.56f, 0.58f, 0.64f};
constexpr Colour BOUNCE = {0.36f, 0.32f, 0.29f}; // from the ground, on steep slopes
constexpr float SUN_RELIEF = 1.7f;     // slopes are lit as if they were so many times steeper
constexpr float OCCLUSION_DEPTH = 230; // units; at this depth no skylight but LEAST_SKY is left
constexpr float SHADOW_RELIEF = 1.25f; // shadows are as long as if land were so much higher
constexpr int SHADOW_STEPS = 40;       // length of the longest shadow, in samples
constexpr float PENUMBRA = 35;         // units; a shadow is full so far below its upper edge
constexpr float SHADOW = 0.55f;        // share of the sunlight that a full shadow takes away
constexpr float LEAST_SKY = 0.55f;     // share of the skylight that the deepest valley gets
constexpr float CLIFF_SKY = 0.95f;     // least share of the skylight on the cliff and the water
constexpr float STEEP_GAIN = 0.45f;    // share of the game's dimming of steep slopes that is undone

constexpr float SHOULDER = 0.82f; // brighter values are compressed below 1 instead of being cut off
constexpr Colour TRACK = hex(0xD9B57A);
constexpr Colour SNOWY_TRACK = hex(0xC4B8AC);
constexpr float BORDER_BEND = 34; // samples by which noise shifts the borders of countries, at most
constexpr float BORDER_FRAY = 0.8f; // strength of the noise that makes these borders ragged
constexpr int BROAD = 8;            // samples on each side within which open water is averaged

constexpr int NOISE_SIDE = 512; // texels of TexNoise; they cover 500 units
constexpr float NOISE_MEAN = 0.955f;
constexpr float NOISE_MEADOW = 0.075f; // strength of patches of 30 to 60 units
constexpr float NOISE_TUFT = 0.085f;   // strength of spots of 8 to 15 units
constexpr float NOISE_BLADE = 0.06f;   // strength of grain of 2 to 4 units; more of it shimmers
constexpr int NOISE_STROKES = 6500;    // number of stems and chips of stone
constexpr float NOISE_STROKE = 0.11f;  // how much lighter or darker a stroke is
constexpr Colour NOISE_TINT = {1.0f, 0.985f, 0.94f}; // warm, because the game adds a white sheen

namespace
{
struct Surroundings // what the look of a sample depends on, apart from its own height
{
    int seed;           // of this land's noise
    Field level;        // mean height within some 200 units
    Field region;       // mean height within some 500 units
    Field moisture;     // 0 dry .. 1 wet
    Field shore, depth; // samples: from land to the nearest water, from water to the nearest land
    Field open;         // share of water within some 200 units
    Field shadow;       // 0 sun .. 1 in the shadow of higher land
};
} // namespace

// The unit normal, its x, y, z in r, g, b; relief 1 is the true shape.
static Colour normalOf(const Field &height, int x, int z, float relief)
{
    const float dx = height.clamped(x + 1, z) - height.clamped(x - 1, z);
    const float dz = height.clamped(x, z + 1) - height.clamped(x, z - 1);
    const float up = 2 * SPACING / relief;
    const float size = std::sqrt(dx * dx + dz * dz + up * up);
    return {-dx / size, up / size, -dz / size};
}

// How much sun a slope gets: 0 none, 1 as much as level ground, 1.5 at most.
static float facingOf(Colour n)
{
    return std::clamp((n.r * SUN[0] + n.g * SUN[1] + n.b * SUN[2]) / SUN[1], 0.0f, 1.5f);
}

// Summits see the whole sky. Places below their surroundings see less of it. Steep slopes also get
// light from the ground before them. Without that light, rock is black where the sun does not
// reach.
static Colour lightAt(const Land &land, const Surroundings &around, const Spot &spot, int x, int z)
{
    const float below = around.region.at(x, z) - spot.height;
    const float bright = std::max(land.cliff.at(x, z), land.water.at(x, z));
    const float sky =
        std::clamp(0.92f - below / OCCLUSION_DEPTH, mix(LEAST_SKY, CLIFF_SKY, bright), 1.0f);
    const float up = 1 / std::sqrt(1 + square(spot.slope));
    const float sun = 1 - SHADOW * around.shadow.at(x, z) * (1 - 0.6f * bright);
    const float shade = std::max(1 - spot.facing, 0.0f);
    const Colour light = SUNLIGHT * (0.62f * spot.facing * sun) + SKYLIGHT * sky +
                         BOUNCE * ((1 - up) * (0.3f + 1.5f * shade));
    // The game lights a slope in proportion to 1 + up.
    return light * mix(1, 2 / (1 + up), STEEP_GAIN * (1 - land.cliff.at(x, z)));
}

// The shadow of the land on each sample, 0 none .. 1 full. A sample is in the shadow if the ray
// from it to the sun meets land.
static Field shadowsOf(const Field &height)
{
    Field shadow(height.width, height.height);
    const float level = length(SUN[0], SUN[2]);
    const float rise = SUN[1] / level * SPACING / SHADOW_RELIEF; // of a ray within one sample
    shadow.paint(
        [&](int x, int z)
        {
            float above = 0; // units by which land rises above the ray
            for (int k = 1; k <= SHADOW_STEPS; ++k)
            {
                const float way = float(k) / level;
                const float ray = height.at(x, z) + rise * float(k);
                const float land =
                    height.clamped(x + int(SUN[0] * way + 0.5f), z + int(SUN[2] * way + 0.5f));
                above = std::max(above, (land - ray) / (1 + 0.06f * float(k)));
            }
            return soft(0, PENUMBRA, above);
        });
    return blurred(shadow, 1);
}

static Field moistureOf(const Land &land)
{
    Field near = blurred(blurred(land.water, 9), 9);
    near.paint(
        [&](int x, int z)
        {
            const float low = soft(260, 60, land.height.at(x, z));
            return std::min(0.55f * low + 2.4f * near.at(x, z), 1.0f);
        });
    return near;
}

static Surroundings surroundingsOf(const Land &land)
{
    return {noiseSeed(land.seed, 1000) % 100000, // libnoise needs 1013 times the seed to fit an int
            blurred(blurred(land.height, 4), 4),
            blurred(blurred(land.height, 10), 10),
            moistureOf(land),
            distanceTo(land.water, 0.5f, 1),
            distanceTo(land.water, 0, 0.5f),
            blurred(land.water, BROAD),
            shadowsOf(land.height)};
}

// Noise bends the borders between countries and frays them over some samples.
static void shareCountries(Spot &spot, const Land &land, int x, int z)
{
    const float bendX = fractal(spot.x / 1700, spot.z / 1700, 0, 3, 0.5f, layer(spot, 210));
    const float bendZ = fractal(spot.x / 1700, spot.z / 1700, 0, 3, 0.5f, layer(spot, 215));
    const int fromX = x + int(std::floor(BORDER_BEND * bendX + 0.5f));
    const int fromZ = z + int(std::floor(BORDER_BEND * bendZ + 0.5f));
    float sum = 0;
    for (int k = 0; k < COUNTRIES; ++k)
    {
        const float weight = land.country[size_t(k)].clamped(fromX, fromZ);
        const float fray =
            weight > 0.02f && weight < 0.98f
                ? fractal(spot.x / 520, spot.z / 520, 0, 4, 0.65f, layer(spot, 180 + 5 * k))
                : 0;
        const float share = weight + BORDER_FRAY * fray * 4 * weight * (1 - weight);
        spot.weights[k] = square(square(std::max(share, 0.0f)));
        sum += spot.weights[k];
    }
    for (float &weight : spot.weights)
        weight = sum > 0 ? weight / sum : 1.0f / COUNTRIES;
}

static Spot spotAt(const Land &land, const Surroundings &around, int x, int z)
{
    const Colour n = normalOf(land.height, x, z, 1);
    Spot spot = {};
    spot.seed = around.seed;
    spot.x = land.toWorld(x);
    spot.z = land.toWorld(z);
    spot.height = land.height.at(x, z);
    spot.slope = length(n.r, n.b) / n.g;
    spot.facing = facingOf(normalOf(land.height, x, z, SUN_RELIEF));
    spot.hollow = around.level.at(x, z) - spot.height;
    spot.rough = 2 * fractal(spot.x / 210, spot.z / 210, 0, 3, 0.6f, layer(spot, 170));
    spot.grain = scatter(x, z, layer(spot, 175)) - 0.5f;
    spot.moisture = around.moisture.at(x, z);
    spot.shore = around.shore.at(x, z) * SPACING;
    spot.depth = around.depth.at(x, z) * SPACING;
    spot.open = around.open.at(x, z);
    shareCountries(spot, land, x, z);
    return spot;
}

static Colour groundColour(const Land &land, const Spot &spot, int x, int z)
{
    const float cliff = land.cliff.at(x, z);
    Colour colour = {};
    if (cliff < 1)
    {
        colour = farmColour(wildColour(spot), spot, land.villages);
        colour = shoreColour(colour, spot);
    }
    if (cliff > 0)
        colour = mix(colour, cliffColour(spot), cliff);
    const Colour track = mix(TRACK, SNOWY_TRACK, spot.weights[COUNTRY_SNOWFIELD]);
    colour = mix(colour, track * (1 + 0.06f * spot.rough), 0.9f * land.track.at(x, z));
    const float ford = 0.5f * land.track.at(x, z);
    const float water = std::max(land.water.at(x, z) - ford, 0.0f);
    if (water > 0)
        colour = mix(colour, waterColour(spot), water);
    const float spray = 0.95f + 0.25f * spot.grain;
    return mix(colour, FOAM, std::clamp(land.fall.at(x, z) * spray, 0.0f, 1.0f));
}

static Canvas landColours(const Land &land)
{
    Canvas colours(land.side(), land.side());
    const Surroundings around = surroundingsOf(land);
    colours.paint(
        [&](int x, int z)
        {
            const Spot spot = spotAt(land, around, x, z);
            const Colour lit = groundColour(land, spot, x, z) * lightAt(land, around, spot, x, z);
            return Colour{pressed(lit.r, SHOULDER, 1), pressed(lit.g, SHOULDER, 1),
                          pressed(lit.b, SHOULDER, 1)};
        });
    buildHouses(colours, land);
    return colours;
}

// Draws short strokes in all directions. A stroke that leaves the tile goes on at its other side.
static void strew(Canvas &tile)
{
    for (int i = 0; i < NOISE_STROKES; ++i)
    {
        const float x = scatter(i, 0, 7) * NOISE_SIDE;
        const float y = scatter(i, 1, 7) * NOISE_SIDE;
        const float dx = (scatter(i, 2, 7) - 0.5f) * 7;
        const float dy = (scatter(i, 3, 7) - 0.5f) * 7;
        const float grey = i % 2 ? 1.0f : NOISE_MEAN - 2 * NOISE_STROKE;
        for (int k = 0; k < 9; ++k)
        {
            const float ax = x + float((k % 3 - 1) * NOISE_SIDE);
            const float ay = y + float((k / 3 - 1) * NOISE_SIDE);
            drawLine(tile, {ax, ay, ax + dx, ay + dy}, 0.8f, NOISE_TINT * grey,
                     0.2f + 0.3f * scatter(i, 4, 7));
        }
    }
}

// Grass, earth and pebbles of all sizes down to a texel. The tile repeats without a seam.
static Canvas groundTile()
{
    Canvas tile(NOISE_SIDE, NOISE_SIDE);
    tile.paint(
        [](int x, int y)
        {
            const float u = float(x) / NOISE_SIDE;
            const float v = float(y) / NOISE_SIDE;
            const float warp = 0.5f * noiseAt(u * 12, v * 12, 12, 301);
            const float patch = fractal(u * 10 + warp, v * 10, 10, 2, 0.7f, 311);
            const float tuft = fractal(u * 40 + 2 * warp, v * 40 - warp, 40, 2, 0.6f, 321);
            const float blade = fractal(u * 128 + 4 * warp, v * 128, 128, 2, 0.7f, 331);
            const float grey = NOISE_MEAN + NOISE_MEADOW * patch * 1.6f + NOISE_TUFT * tuft * 1.6f +
                               NOISE_BLADE * blade * 1.6f;
            const float warmth = 0.03f * patch;
            return NOISE_TINT * Colour{grey + warmth, grey, grey - warmth};
        });
    strew(tile);
    return tile;
}

void paintGround(Images &images, const Land &land)
{
    startStage("Colouring the land");
    addColours(images, "MapTex", asImage(landColours(land)), 32);
    startStage("Weaving the texture of the ground");
    addColours(images, "TexNoise", groundTile());
}
