// Villages: their fields, yards and houses.
#include "ground.h"

constexpr Colour ROOFS[] = {hex(0xF03A18), hex(0xF86A20), hex(0xC82A20), hex(0xF4D8A0)};
constexpr Colour ADOBE_ROOFS[] = {hex(0xF6E2BC), hex(0xE8B078), hex(0xFFF2DC), hex(0xD88A54)};
constexpr Colour THATCH_ROOFS[] = {hex(0xE2BE62), hex(0xC89A44), hex(0xF0D488), hex(0xB8843C)};
constexpr Colour SNOW_ROOFS[] = {hex(0xF4F8FF), hex(0xE6EEFF), hex(0xD84A30), hex(0xF4F8FF)};
constexpr Colour YARD = hex(0xCDB68A);
constexpr int CROP_KINDS = 6;
constexpr Colour CROPS[COUNTRIES][CROP_KINDS] = {
    {hex(0xE2C23C), hex(0x86B82A), hex(0xB98A4A), hex(0x5C9A26), hex(0xD8A640), hex(0x9CC43A)},
    {hex(0xE8B24A), hex(0xC27A3E), hex(0x9A9A4A), hex(0xD89A58), hex(0x84924A), hex(0xF0CC70)},
    {hex(0xD8C44A), hex(0x6EA82E), hex(0xA6804A), hex(0x4E8E2A), hex(0x8CB83A), hex(0xC2A24A)},
    {hex(0x58B4B8), hex(0x7CC83C), hex(0x9AD84A), hex(0x62AE3A), hex(0x6CC0B4), hex(0xB4C84A)},
    {hex(0xE2EAF8), hex(0xD0DCF2), hex(0xC8B89A), hex(0xEEF4FF), hex(0xBECEEA), hex(0xDCE6F8)}};
constexpr Colour HEDGE = hex(0x3E6E22);
constexpr Colour STONE_WALL = hex(0xB89A78);
constexpr Colour BARE_HEDGE = hex(0x8C9CB4);

constexpr float FIELD_LENGTH = 150; // units
constexpr float FIELD_WIDTH = 100;
constexpr float FIELD_BLOCK = 310; // units; all fields of a block run in one direction
constexpr int HOUSE_SPACING = 4;   // samples from house to house
constexpr int HOUSE_SIDE = 3;      // samples

static Country mainCountry(const float *weights)
{
    return Country(std::max_element(weights, weights + COUNTRIES) - weights);
}

static Colour hedgeOf(Country country)
{
    return country == COUNTRY_HIGHLAND    ? STONE_WALL
           : country == COUNTRY_SNOWFIELD ? BARE_HEDGE
                                          : HEDGE;
}

// Strips of crops around a village. Fallow strips keep the colour of the ground.
static Colour fieldColour(Colour ground, const Spot &spot, const Place &place)
{
    const float dx = spot.x - place.x;
    const float dz = spot.z - place.z;
    const int turned = scatter(int(std::floor(dx / FIELD_BLOCK)), int(std::floor(dz / FIELD_BLOCK)),
                               layer(spot, 150)) > 0.5f;
    const float skew = 0.18f * (turned ? dx : dz); // boundaries lean a little
    const float u = (turned ? dz : dx) + skew;
    const float v = (turned ? dx : dz) - skew;
    const int i = int(std::floor(u / FIELD_WIDTH));
    const int k = int(std::floor(v / FIELD_LENGTH)) + 100 * turned;
    const float pick = scatter(i, k, layer(spot, 151) + int(place.x));
    if (pick > 0.86f)
        return ground;
    const float edge =
        std::min(u - float(i) * FIELD_WIDTH, v - std::floor(v / FIELD_LENGTH) * FIELD_LENGTH);
    const float furrow = scatter(int(std::floor(u / SPACING)), k, layer(spot, 152)) - 0.5f;
    const Country country = mainCountry(spot.weights);
    const Colour crop = CROPS[country][int(pick * 6.97f)] * (1 + 0.16f * furrow);
    return mix(edge < SPACING ? hedgeOf(country) : crop, ground, soft(0.22f, 0.3f, spot.slope));
}

Colour farmColour(Colour ground, const Spot &spot, const std::vector<Place> &villages)
{
    for (const Place &place : villages)
    {
        const float d = length(spot.x - place.x, spot.z - place.z);
        if (d > place.radius * 4.5f)
            continue;
        const float waver =
            1 + 0.35f * fractal(spot.x / 350, spot.z / 350, 0, 2, 0.5f, layer(spot, 153));
        if (d * waver < place.radius * 3 && d * waver > place.radius * 0.8f && spot.slope < 0.3f)
            ground = fieldColour(ground, spot, place);
        const float yard = soft(place.radius * 0.9f, place.radius * 0.5f, d + 40 * spot.rough);
        ground = mix(ground, YARD * (1 + 0.1f * spot.grain), 0.75f * yard);
    }
    return ground;
}

static Colour roofOf(Country country, float pick)
{
    const int k = int(pick * 3.99f);
    return country == COUNTRY_HIGHLAND    ? ADOBE_ROOFS[k]
           : country == COUNTRY_MARSH     ? THATCH_ROOFS[k]
           : country == COUNTRY_SNOWFIELD ? SNOW_ROOFS[k]
                                          : ROOFS[k];
}

// A roof with its ridge along z: the side toward the sun is brighter. The shadow of the house falls
// on the other side.
static void buildHouse(Canvas &colours, int x, int z, Colour roof)
{
    constexpr float SHADE = 0.5f;
    for (int k = 0; k < HOUSE_SIDE + 1; ++k)
    {
        colours.at(x - 1, z - 1 + k) = colours.at(x - 1, z - 1 + k) * SHADE;
        colours.at(x - 1 + k, z - 1) = colours.at(x - 1 + k, z - 1) * SHADE;
    }
    for (int k = 0; k < HOUSE_SIDE * HOUSE_SIDE; ++k)
        colours.at(x + k % HOUSE_SIDE, z + k / HOUSE_SIDE) =
            roof * (k % HOUSE_SIDE == 0 ? 0.72f : 1.05f);
}

// True if a house at this sample lies inside the land and touches no track and no water.
static bool isFree(const Land &land, int x, int z)
{
    if (!land.height.holds(x - 1, z - 1) || !land.height.holds(x + HOUSE_SIDE, z + HOUSE_SIDE))
        return false;
    float taken = 0;
    for (int n = 0; n < HOUSE_SIDE * HOUSE_SIDE; ++n)
    {
        const int i = x + n % HOUSE_SIDE;
        const int k = z + n / HOUSE_SIDE;
        taken += land.track.at(i, k) + land.water.at(i, k);
    }
    return taken < 0.5f;
}

static void buildVillage(Canvas &colours, const Land &land, const Place &place)
{
    const int seed = noiseSeed(land.seed, 154) % 100000 + int(place.x);
    const int reach = int(place.radius / SPACING) / HOUSE_SPACING + 1;
    for (int k = -reach; k <= reach; ++k)
        for (int i = -reach; i <= reach; ++i)
        {
            const int x = int((place.x + land.half()) / SPACING) + HOUSE_SPACING * i +
                          int(scatter(i, k, seed) * 2);
            const int z = int((place.z + land.half()) / SPACING) + HOUSE_SPACING * k +
                          int(scatter(k, i, seed) * 2);
            const float d = length(land.toWorld(x) - place.x, land.toWorld(z) - place.z);
            if (d > place.radius || scatter(i, k, seed + 1) > 0.8f || !isFree(land, x, z))
                continue;
            float weights[COUNTRIES];
            for (int n = 0; n < COUNTRIES; ++n)
                weights[n] = land.weight(Country(n), x, z);
            buildHouse(colours, x, z, roofOf(mainCountry(weights), scatter(i, k, seed + 2)));
        }
}

void buildHouses(Canvas &colours, const Land &land)
{
    for (const Place &place : land.villages)
        buildVillage(colours, land, place);
}
