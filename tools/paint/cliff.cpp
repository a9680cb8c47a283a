// The cliff that ends the land, from the boulders at its foot to the snow on its brink.
#include "ground.h"

// The game adds a strong white sheen to the cliff. Dark, saturated colours stay readable under it.
constexpr Colour LAYERS[] = {hex(0xC87A3C), hex(0x7C4A38), hex(0xB89060),
                             hex(0x5C4450), hex(0xD89A4C), hex(0x8E5A4C)};
constexpr Colour CRACK = hex(0x2A1C20);
constexpr Colour LEDGE = hex(0x5AA01C);
constexpr Colour LICHEN = hex(0xD8941C);
constexpr Colour BOULDERS = hex(0x8E8070);

constexpr float LAYER_HEIGHT = 125; // units; the steepest part rises 100 from sample to sample
constexpr float TOP_SNOW = 0.86f;   // share of the height of the cliff where snow begins

// The position along the coast in units. It is continuous at the corners of the land.
static float alongCoast(const Spot &spot)
{
    if (std::fabs(spot.x) > std::fabs(spot.z))
        return spot.z;
    return spot.x * spot.z >= 0 ? spot.x : -spot.x;
}

// A layer of rock with its own colour: light in the middle, dark at its foot and its upper edge.
static Colour layerColour(const Spot &spot, float level)
{
    const int k = int(std::floor(level));
    const float up = level - float(k);
    const auto colourOf = [&](int i)
    { return LAYERS[int(scatter(i, 1, layer(spot, 100)) * 5.99f)]; };
    const Colour colour = mix(colourOf(k), colourOf(k + 1), soft(0.75f, 1, up));
    return colour * (0.25f + soft(0, 0.5f, up) * soft(1, 0.92f, up));
}

static Colour rockFace(const Spot &spot, float up, float broad)
{
    const float along = alongCoast(spot);
    const float rib = noiseAt(along / 105, up * 0.8f, 0, layer(spot, 101)) +
                      0.6f * noiseAt(along / 55, up * 1.5f, 0, layer(spot, 102));
    const float waver = fractal(along / 330, up * 1.2f, 0, 3, 0.6f, layer(spot, 106));
    const float level = spot.height / LAYER_HEIGHT + 1.2f * broad + 0.7f * waver + 0.1f * rib;
    const float plain = soft(-0.1f, 0.35f, waver + broad); // stretches of massive rock
    const Colour massive = LAYERS[2] * (0.9f + 0.25f * waver);
    Colour colour = mix(layerColour(spot, level), massive, 0.65f * plain);
    colour = colour * (1 + 0.22f * rib + 0.25f * spot.grain);
    colour = mix(colour, CRACK, 0.6f * soft(0.45f, 0.7f, -rib - 0.4f * waver));
    const float patch = fractal(along / 170, spot.height / 130, 0, 3, 0.6f, layer(spot, 103));
    colour = mix(colour, LICHEN, 0.55f * soft(0.12f, 0.34f, patch + 0.2f * spot.grain));
    const float ledge = level - std::floor(level);
    return mix(colour, LEDGE * (1 + 0.3f * spot.grain),
               0.85f * soft(0.14f, 0.3f, patch * -1 + 0.3f * broad) * soft(0.5f, 0.85f, ledge));
}

static Colour footColour(Colour rock, const Spot &spot, float up, float broad)
{
    const float fan = noiseAt(alongCoast(spot) / 260, 0, 0, layer(spot, 110));
    const Colour stones = mix(BOULDERS, SCREE, 0.5f + spot.grain) * (1 + 0.3f * spot.grain);
    rock = mix(rock, stones, 0.9f * soft(0.1f, 0.03f, up - 0.14f * std::max(fan, 0.0f)));
    const Clump tree = clumpAt(spot, 70, 40, 111);
    const Colour crown = mix(FOREST, FOREST_LIGHT, std::clamp(0.5f + tree.sunward, 0.0f, 1.0f));
    const float woods = 0.16f + 0.5f * broad - 0.12f * fan;
    return mix(rock, crown * 1.35f,
               soft(woods + 0.06f, woods - 0.06f, up) * soft(0.02f, 0.06f, up));
}

Colour cliffColour(const Spot &spot)
{
    const float up = (spot.height - WATER_LEVEL) / (HEIGHT_RANGE - WATER_LEVEL);
    const float broad = fractal(spot.x / 800, spot.z / 800, 0, 3, 0.6f, layer(spot, 104));
    const Colour face = footColour(rockFace(spot, up, broad), spot, up, broad);
    const float snow =
        up - TOP_SNOW + 0.3f * broad + 0.06f * spot.rough + 0.22f * spot.weights[COUNTRY_SNOWFIELD];
    return mix(face, snowColour(spot), soft(-0.05f, 0.05f, snow));
}
