// The land's colours with the sun baked in, and the texture repeated over it.
#include "land.h"
#include "painters.h"

// The game lights the land dimly and from the eye, adds a broad white sheen where one looks down on
// it and multiplies with TexNoise: the colours here are bright and fuller than they will look.
constexpr Colour MEADOW = hex(0x7DB51A);
constexpr Colour LUSH = hex(0x3C961A);
constexpr Colour DRY_GRASS = hex(0xD8B432);
constexpr Colour FOREST = hex(0x24601A);
constexpr Colour FOREST_LIGHT = hex(0x4F8A2A);
constexpr Colour ROCK = hex(0xDCA05C);
constexpr Colour ROCK_DARK = hex(0x804C32);
constexpr Colour SCREE = hex(0xCFAE62);
constexpr Colour SNOW = hex(0xE4F0FF);
constexpr Colour SAND = hex(0xE6CC86);
constexpr Colour SHALLOWS = hex(0x22BCC4);
constexpr Colour DEEP_WATER = hex(0x0048B8);
constexpr Colour TRACK = hex(0xD9B57A);
constexpr Colour ROOFS[] = {hex(0xF03A18), hex(0xF86A20), hex(0xC82A20), hex(0xF4D8A0)};
constexpr Colour YARD = hex(0xCDB68A);
constexpr Colour CROPS[] = {hex(0xE2C23C), hex(0x86B82A), hex(0xB98A4A),
                            hex(0x5C9A26), hex(0xD8A640), hex(0x9CC43A)};
constexpr Colour HEDGE = hex(0x3E6E22);
constexpr Colour FLOWERS[] = {hex(0xFFE93A), hex(0xFFA23A), hex(0xE6F27A)};

constexpr float SUN[] = {0.62f, 0.58f, 0.53f}; // toward the sun, along x, y, z: left and ahead
constexpr Colour SUNLIGHT = {0.84f, 0.80f, 0.70f};
constexpr Colour SKYLIGHT = {0.56f, 0.58f, 0.64f};
constexpr float SUN_RELIEF = 1.7f;     // slopes are lit as if so much steeper
constexpr float OCCLUSION_DEPTH = 230; // units below the surroundings at which no sky would be seen

constexpr float SHOULDER = 0.82f; // brighter than this is pressed below 1, not cut off
constexpr float SNOW_LINE = 400;
constexpr float TREE_LINE = 330;
constexpr float ROCK_SLOPE[] = {0.36f, 0.62f}; // from grass to bare rock, as rise per run
constexpr float GULLY_DEPTH = 70;              // gullies darken and crests shine in this measure
constexpr float FIELD_LENGTH = 150;            // units
constexpr float FIELD_WIDTH = 100;
constexpr int HOUSE_SPACING = 4; // samples from house to house

constexpr Colour CLIFF = hex(0xD0A27A);
constexpr Colour CLIFF_DARK = hex(0x4E3A38);
constexpr Colour LEDGE = hex(0x5E9A26);
constexpr float CLIFF_LIGHT = 0.9f; // share of the sky that its foot sees: the fjord shines back
constexpr float CLIFF_SHADE = 0.7f; // its foot is less steep, and the game's sheen pales it
constexpr int NOISE_SIDE = 512;     // texels of TexNoise, over 500 units
constexpr float NOISE_MEAN = 0.945f;
constexpr float NOISE_MEADOW = 0.075f;               // strength of patches of 30 to 60 units
constexpr float NOISE_TUFT = 0.085f;                 // of 8 to 15 units
constexpr float NOISE_BLADE = 0.06f;                 // of 2 to 4 units; more would shimmer far away
constexpr int NOISE_STROKES = 6500;                  // stems and chips of stone
constexpr float NOISE_STROKE = 0.14f;                // how far one is lighter or darker
constexpr Colour NOISE_TINT = {1.0f, 0.985f, 0.87f}; // a warm cast, against the white sheen

namespace
{
struct Spot // what a sample looks like before it is lit
{
    float x, z; // world
    float height;
    float slope;    // rise per run
    float hollow;   // units below the surroundings
    float rough;    // noise, about -1..1
    float moisture; // 0 dry .. 1 wet
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

// Open sky lights the tops fully; what lies below its surroundings sees less of it.
static Colour lightAt(const Land &land, const Field &surroundings, int x, int z)
{
    const float below = surroundings.at(x, z) - land.height.at(x, z);
    const float least = mix(0.5f, CLIFF_LIGHT, land.cliff.at(x, z));
    const float sky = std::clamp(0.92f - below / OCCLUSION_DEPTH, least, 1.0f);
    const Colour n = normalOf(land.height, x, z, SUN_RELIEF);
    const float facing = std::max(n.r * SUN[0] + n.g * SUN[1] + n.b * SUN[2], 0.0f) / SUN[1];
    return SUNLIGHT * (0.62f * std::min(facing, 1.5f)) + SKYLIGHT * sky;
}

static float forestCover(const Spot &spot)
{
    const float wood = fractal(spot.x / 900, spot.z / 900, 0, 4, 0.55f, 211);
    const float wanted =
        wood + 0.45f * (spot.moisture - 0.5f) + 0.8f * soft(0.1f, 0.4f, spot.slope);
    const float plain = soft(250, 1100, length(spot.x, (spot.z - 700) * 0.55f));
    return soft(0.14f, 0.26f, wanted - 0.5f * (1 - plain)) *
           soft(TREE_LINE + 40, TREE_LINE - 30, spot.height + 50 * spot.rough);
}

// Flowers where the meadow is dense, lone trees and bushes anywhere.
static Colour sprinkled(Colour colour, const Spot &spot, float grain)
{
    const float patch = fractal(spot.x / 260, spot.z / 260, 0, 2, 0.5f, 261);
    if (grain > 0.978f && spot.height < TREE_LINE)
        return FOREST;
    const int kind = int(scatter(int(spot.x) / 400, int(spot.z) / 400, 6) * 2.99f);
    return mix(colour, FLOWERS[kind], grain < 0.16f ? 0.6f * soft(0.12f, 0.3f, patch) : 0.0f);
}

static Colour wildColour(const Spot &spot)
{
    const float grain = scatter(int(spot.x), int(spot.z), 5) - 0.5f;
    const float broad = fractal(spot.x / 700, spot.z / 700, 0, 4, 0.6f, 221);
    Colour colour = mix(MEADOW, LUSH, soft(0.35f, 0.75f, spot.moisture + 0.5f * broad));
    const float dry = soft(0.05f, 0.45f, broad - spot.moisture * 0.35f + spot.height / 1300);
    colour = mix(colour, DRY_GRASS, 0.85f * dry) * (1 + 0.12f * spot.rough + 0.14f * grain);
    colour = sprinkled(colour, spot, grain + 0.5f);
    const Colour trees = mix(FOREST, FOREST_LIGHT, std::clamp(0.45f + 1.3f * grain, 0.0f, 1.0f));
    colour = mix(colour, trees, forestCover(spot));
    const float bare = spot.slope + 0.10f * spot.rough + soft(300, 480, spot.height) * 0.22f;
    const float strata = 0.55f + 0.8f * noiseAt(spot.height / 17, spot.rough * 1.2f, 0, 231);
    const Colour rock = mix(ROCK_DARK, ROCK, std::clamp(strata + 0.6f * grain, 0.0f, 1.0f));
    colour = mix(colour, SCREE * (1 + 0.2f * grain), soft(0.26f, 0.42f, bare));
    colour = mix(colour, rock, soft(ROCK_SLOPE[0], ROCK_SLOPE[1], bare + 0.1f * grain));
    const float snow = spot.height + 45 * spot.rough + 0.8f * spot.hollow - 70 * spot.slope;
    colour = colour * (1 - std::clamp(spot.hollow / GULLY_DEPTH, -0.22f, 0.30f));
    return mix(colour, SNOW, soft(SNOW_LINE - 14, SNOW_LINE + 14, snow));
}

// From the scree at the foot over woods and ledges to bare rock and snow; what runs up and down the
// cliff depends on the place along the coast alone.
static Colour cliffColour(const Spot &spot)
{
    const float along = std::min(std::fabs(spot.x), std::fabs(spot.z));
    const float drift = (spot.x + 2 * spot.z) / 2500;
    const float rib =
        noiseAt(along / 90, drift, 0, 271) + 0.6f * noiseAt(along / 48, drift, 0, 272);
    const float broad = fractal(along / 700, drift, 0, 3, 0.7f, 273);
    const float grain = scatter(int(spot.x), int(spot.z), 5) - 0.5f;
    const float up = (spot.height - WATER_LEVEL) / (HEIGHT_RANGE - WATER_LEVEL);
    const float strata = noiseAt(spot.height / 75 + 3 * broad, drift * 3, 0, 274);
    const float bright = std::clamp(0.5f + 0.6f * strata + 0.7f * rib + 0.3f * grain, 0.0f, 1.0f);
    Colour colour = mix(CLIFF_DARK, CLIFF, bright);
    const float ledge = soft(0.1f, 0.4f, strata - 0.5f * rib) * soft(0.85f, 0.6f, up);
    colour = mix(colour, LEDGE * (1 + 0.3f * grain), 0.8f * ledge);
    const float woods = 0.34f + 0.8f * broad + 0.25f * rib;
    const Colour trees = mix(FOREST, FOREST_LIGHT, std::clamp(0.4f + 1.2f * grain, 0.0f, 1.0f));
    colour = mix(colour, trees, soft(woods + 0.1f, woods - 0.1f, up));
    const float scree = up + 0.06f * rib - 0.12f * broad;
    colour = mix(colour, SCREE * (1 + 0.2f * grain), 0.8f * soft(0.07f, 0.02f, scree));
    const float snow = up - 0.2f * rib - 0.5f * broad;
    colour = mix(colour, SNOW, soft(0.68f, 0.76f, snow));
    return colour * mix(CLIFF_SHADE, 1, soft(0, 0.5f, up)) * (1 + 0.16f * rib);
}

static Colour waterColour(const Land &land, int x, int z)
{
    const Field &water = land.water;
    float inside = 0; // how far the surroundings are water too
    for (int k = 0; k < 9; ++k)
        inside += water.clamped(x + (k % 3 - 1) * 5, z + (k / 3 - 1) * 5) / 9;
    const float ripple = 0.06f * noiseAt(land.toWorld(x) / 90, land.toWorld(z) / 40, 0, 241);
    return mix(SHALLOWS, DEEP_WATER, soft(0.3f, 1, inside) * 0.9f) * (1 + ripple);
}

// Strips of crops about a village, in blocks that each run their own way.
static void farm(Colour &colour, const Place &place, const Spot &spot)
{
    const float dx = spot.x - place.x;
    const float dz = spot.z - place.z;
    const float d =
        length(dx, dz) * (1 + 0.35f * fractal(spot.x / 350, spot.z / 350, 0, 2, 0.5f, 251));
    if (d > place.radius * 3 || d < place.radius * 0.8f || spot.slope > 0.3f)
        return;
    const int turned = scatter(int(std::floor(dx / 310)), int(std::floor(dz / 310)), 9) > 0.5f;
    const float skew = 0.18f * (turned ? dx : dz); // boundaries lean a little
    const float u = (turned ? dz : dx) + skew;
    const float v = (turned ? dx : dz) - skew;
    const int i = int(std::floor(u / FIELD_WIDTH));
    const int k = int(std::floor(v / FIELD_LENGTH)) + 100 * turned;
    const float pick = scatter(i, k, int(place.x));
    if (pick > 0.86f)
        return; // lies fallow
    const float edge =
        std::min(u - float(i) * FIELD_WIDTH, v - std::floor(v / FIELD_LENGTH) * FIELD_LENGTH);
    const float furrow = scatter(int(std::floor(u / SPACING)), k, 3) - 0.5f;
    const Colour crop = CROPS[int(pick * 6.97f)] * (1 + 0.16f * furrow);
    colour = mix(edge < SPACING ? HEDGE : crop, colour, soft(0.22f, 0.3f, spot.slope));
}

static Colour bareGround(const Land &land, const Spot &spot, int x, int z)
{
    const float cliff = land.cliff.at(x, z);
    Colour colour = mix(wildColour(spot), cliffColour(spot), cliff);
    colour = mix(colour, SNOW, 0.9f * land.fall.at(x, z));
    for (const Place &place : land.villages)
    {
        farm(colour, place, spot);
        const float d = length(spot.x - place.x, spot.z - place.z) + 40 * spot.rough;
        colour = mix(colour, YARD, 0.75f * soft(place.radius * 0.9f, place.radius * 0.5f, d));
    }
    const float beach =
        soft(WATER_LEVEL + 20, WATER_LEVEL + 7, spot.height + 6 * spot.rough) * (1 - cliff);
    colour = mix(colour, SAND, beach);
    colour = mix(colour, TRACK * (1 + 0.06f * spot.rough), 0.9f * land.track.at(x, z));
    const float water = land.water.at(x, z);
    const float ford = 0.5f * land.track.at(x, z);
    return mix(colour, waterColour(land, x, z), std::max(water - ford, 0.0f));
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

static Spot spotAt(const Land &land, const Field &level, const Field &moisture, int x, int z)
{
    const Colour n = normalOf(land.height, x, z, 1);
    const float wx = land.toWorld(x);
    const float wz = land.toWorld(z);
    return {wx,
            wz,
            land.height.at(x, z),
            length(n.r, n.b) / n.g,
            level.at(x, z) - land.height.at(x, z),
            2 * fractal(wx / 210, wz / 210, 0, 3, 0.6f, 201),
            moisture.at(x, z)};
}

// A roof covers three samples by three, brighter on the side toward the sun, with its shadow
// behind.
static void buildHouse(Canvas &colours, int x, int z, Colour roof)
{
    constexpr float SHADE = 0.55f;
    for (int k = 0; k < 4; ++k)
    {
        colours.at(x - 1, z - 1 + k) = colours.at(x - 1, z - 1 + k) * SHADE;
        colours.at(x - 1 + k, z - 1) = colours.at(x - 1 + k, z - 1) * SHADE;
    }
    for (int k = 0; k < 9; ++k)
        colours.at(x + k % 3, z + k / 3) = roof * (k % 3 == 0 ? 0.78f : 1.1f);
}

static void build(Canvas &colours, const Land &land)
{
    for (const Place &place : land.villages)
        for (int k = -12; k <= 12; ++k)
            for (int i = -12; i <= 12; ++i)
            {
                const int seed = int(place.x);
                const int x = int((place.x + land.half()) / SPACING) + HOUSE_SPACING * i +
                              int(scatter(i, k, seed) * 2);
                const int z = int((place.z + land.half()) / SPACING) + HOUSE_SPACING * k +
                              int(scatter(k, i, seed) * 2);
                const float d = length(land.toWorld(x) - place.x, land.toWorld(z) - place.z);
                float taken = d > place.radius || scatter(i, k, seed + 1) > 0.8f;
                for (int n = 0; n < 9; ++n)
                    taken +=
                        land.track.at(x + n % 3, z + n / 3) + land.water.at(x + n % 3, z + n / 3);
                if (taken < 0.5f)
                    buildHouse(colours, x, z, ROOFS[int(scatter(i, k, seed + 2) * 3.99f)]);
            }
}

static Canvas landColours(const Land &land)
{
    Canvas colours(land.side(), land.side());
    const Field level = blurred(blurred(land.height, 4), 4);
    const Field surroundings = blurred(blurred(land.height, 10), 10);
    const Field moisture = moistureOf(land);
    colours.paint(
        [&](int x, int z)
        {
            const Spot spot = spotAt(land, level, moisture, x, z);
            const Colour lit = bareGround(land, spot, x, z) * lightAt(land, surroundings, x, z);
            return Colour{pressed(lit.r, SHOULDER, 1), pressed(lit.g, SHOULDER, 1),
                          pressed(lit.b, SHOULDER, 1)};
        });
    build(colours, land);
    return colours;
}

// Short strokes in every direction; those that leave the tile come in on the other side.
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

// Grass, earth and pebbles of every size down to a texel, in one tile without a seam.
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

int paintGround(const Output &output, const Land &land)
{
    return saveColours(output, "MapTex", asImage(landColours(land)), 32) &&
           saveColours(output, "TexNoise", groundTile());
}
