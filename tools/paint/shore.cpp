// Beaches and water.
#include "ground.h"

constexpr Colour SAND = hex(0xF0D898);
constexpr Colour PEBBLES = hex(0xA4A8B0);
constexpr Colour MUD = hex(0xBCA066);
constexpr Colour SHALLOWS = hex(0x3CD2C8);
constexpr Colour OPEN_WATER = hex(0x1484CC);
constexpr Colour DEEP_WATER = hex(0x0048B8);
constexpr Colour RIVER = hex(0x2088D2);
constexpr Colour RIVER_EDGE = hex(0x48C4CE);
constexpr Colour ICE = hex(0xB2E2F4);
constexpr Colour BLUE_ICE = hex(0x62B4E2);

constexpr float BEACH_WIDTH = 140;    // units, of the widest beach
constexpr float RAPIDS_SLOPE = 0.07f; // rise per run above which a river foams

Colour shoreColour(Colour ground, const Spot &spot)
{
    const float bay = fractal(spot.x / 750, spot.z / 750, 0, 3, 0.5f, layer(spot, 120));
    const float width =
        BEACH_WIDTH * (0.4f + 0.6f * soft(-0.15f, 0.3f, bay)) * soft(0.1f, 0.3f, spot.open);
    const float *w = spot.weights;
    Colour sand =
        mix(SAND, PEBBLES, std::min(w[COUNTRY_SNOWFIELD] + 0.5f * w[COUNTRY_FOREST], 1.0f));
    sand = mix(sand, MUD, 0.7f * w[COUNTRY_MARSH]) * (1 + 0.1f * spot.grain);
    sand = sand * (1 - 0.25f * soft(45, 15, spot.shore)); // wet
    const float beach = soft(width, width * 0.5f, spot.shore + 14 * spot.rough) *
                        soft(0.5f, 0.3f, spot.slope + 0.06f * spot.rough);
    const float clear = 1 - 0.85f * w[COUNTRY_SNOWFIELD]; // of snow
    return mix(ground, sand, width > 5 ? beach * clear : 0);
}

// White waves: one line at the shore and a fainter one farther out, both broken by noise.
static float surfAt(const Spot &spot)
{
    const float broken = noiseAt(spot.x / 130, spot.z / 130, 0, layer(spot, 130));
    const float first = soft(60, 25, spot.depth) * soft(-0.4f, 0.05f, broken);
    const float second =
        soft(35, 10, std::fabs(spot.depth - 90 - 30 * broken)) * soft(0.1f, 0.4f, broken);
    return std::max(first, 0.5f * second) * soft(0.2f, 0.4f, spot.open);
}

static Colour lakeColour(const Spot &spot)
{
    const float bank = fractal(spot.x / 420, spot.z / 420, 0, 3, 0.5f, layer(spot, 131));
    const float depth = spot.depth * (1 + 0.7f * bank);
    Colour colour = mix(SHALLOWS, OPEN_WATER, soft(20, 130, depth));
    colour = mix(colour, DEEP_WATER, 0.85f * soft(90, 330, depth));
    const float swell = noiseAt(spot.x / 150 + bank, spot.z / 48, 0, layer(spot, 134));
    const float current = fractal(spot.x / 900, spot.z / 300, 0, 2, 0.5f, layer(spot, 135));
    colour = colour * (1 + 0.1f * swell + 0.14f * current);
    const float glint = spot.grain > 0.47f && swell > 0.1f ? 0.35f : 0;
    return mix(colour, FOAM, std::max(glint, 0.8f * surfAt(spot)));
}

static Colour riverColour(const Spot &spot)
{
    const float flow = noiseAt(spot.x / 60, spot.z / 60, 0, layer(spot, 136)) + spot.grain;
    const Colour colour = mix(RIVER_EDGE, RIVER, soft(0, 40, spot.depth)) * (1 + 0.14f * flow);
    const float rapid = soft(RAPIDS_SLOPE, 4 * RAPIDS_SLOPE, spot.slope + 0.05f * flow);
    return mix(colour, FOAM, std::max(0.8f * rapid, flow > 0.62f ? 0.4f : 0.0f));
}

static Colour iceColour(const Spot &spot)
{
    const float drift = fractal(spot.x / 300, spot.z / 300, 0, 3, 0.6f, layer(spot, 140));
    const float crack =
        std::min(std::fabs(noiseAt(spot.x / 230, spot.z / 230, 0, layer(spot, 143))),
                 std::fabs(noiseAt(spot.x / 310, spot.z / 310, 0, layer(spot, 144))));
    const Colour ice = mix(BLUE_ICE, ICE, soft(-0.4f, 0.3f, drift) + 0.2f * spot.grain);
    const float white = std::max(soft(0.05f, 0.02f, crack), soft(0.1f, 0.3f, drift));
    return mix(ice, snowColour(spot), 0.8f * white);
}

Colour waterColour(const Spot &spot)
{
    const Colour colour = mix(riverColour(spot), lakeColour(spot), soft(0.32f, 0.5f, spot.open));
    const float edge =
        spot.rough * 0.25f - spot.depth / 500; // the middle of a lake does not freeze
    const float frozen = soft(0.45f, 0.6f, spot.weights[COUNTRY_SNOWFIELD] + edge);
    return frozen > 0 ? mix(colour, iceColour(spot), frozen) : colour;
}
