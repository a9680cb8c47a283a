// The sky box: one picture for all four walls, with the ceiling hidden in its bottom left corner.
#include "painters.h"

// Units of the box, seen from the eye: each wall is 100 away, 200 wide and reaches from 85 below
// the eye to 115 above it.
// Finer than the display: the dark edges of the walls fall between its pixels.
constexpr int SKY_WIDTH = 4096;
constexpr int SKY_HEIGHT = 2048;
constexpr float WALL = 200;
constexpr float BELOW_EYE = 85;
constexpr float TOP = WALL - BELOW_EYE;
constexpr float CEILING_FROM = 0.002f; // the part of the picture that the ceiling shows
constexpr float CEILING_TO = 0.1f;
constexpr float CEILING_MARGIN = 0.006f; // painted beyond it, since the filter looks past the edge

constexpr Colour FOG = {39.0f / 255, 168.0f / 255, 221.0f / 255}; // the game's own
constexpr Colour ZENITH = hex(0x1C6CC4);
constexpr Colour HAZE_LIGHT = hex(0x6CC8EC);         // a paler band, into which far hills rise
constexpr float HAZE_BAND[] = {0.01f, 0.10f, 0.36f}; // rise per run: from, strongest, to
constexpr float GRADIENT[] = {0.08f, 0.80f}; // rise per run where it starts and where it has ended
constexpr Colour CLOUD_LIT = hex(0xFFFDF6);
constexpr Colour CLOUD_SHADE = hex(0x8FB9DC);
constexpr float CLOUD_SUN[] = {-0.45f, 0.75f, 0.48f}; // toward the sun: left, up, to the viewer
constexpr float FLUFF = 0.30f;     // how far noise frays a cloud, in parts of a puff's radius
constexpr float HAZE[] = {-4, 28}; // units above the horizon between which clouds come out of haze
constexpr float VEIL = 0.20f;      // strength of the thin high cloud

// At the outer half of an outermost texel OpenGL's old clamping mixes in the black border colour: a
// brighter texel makes up for what is lost there, so that no line shows where walls meet.
constexpr float EDGE_LIGHT = 1.2f;

constexpr int PUFFS = 30; // of each cloud

namespace
{
struct Puff
{
    float x, y, radius;
};

struct Cloud
{
    float x, base, halfWidth; // units; base is the height of its flat underside
    int seed;
    Puff puffs[PUFFS];
};

struct Bank // clouds of one distance
{
    int count;
    float base, spread;      // height above the horizon
    float narrowest, widest; // half widths
};
} // namespace

constexpr Bank BANKS[] = {{11, 1.5f, 4, 6, 16}, {6, 18, 9, 10, 21}, {3, 44, 10, 17, 26}};

static Cloud makeCloud(const Bank &bank, int number, int seed)
{
    const float place = (float(number) + 0.8f * scatter(number, 0, seed)) / float(bank.count);
    Cloud cloud = {place * WALL,
                   bank.base + bank.spread * scatter(number, 1, seed),
                   mix(bank.narrowest, bank.widest, scatter(number, 2, seed)),
                   seed + number,
                   {}};
    const float lean = 0.5f * (scatter(number, 3, seed) - 0.5f);
    for (int i = 0; i < PUFFS; ++i)
    {
        const float along = 2 * scatter(i, 0, cloud.seed) - 1;
        const float crown =
            1 - square(along - lean * (1 - std::fabs(along))); // tallest in the middle
        const float radius = cloud.halfWidth * (0.12f + 0.20f * crown * scatter(i, 1, cloud.seed));
        const float up = 0.44f * cloud.halfWidth * crown * square(scatter(i, 2, cloud.seed));
        cloud.puffs[i] = {along * (cloud.halfWidth - radius), up + radius * 0.55f, radius};
    }
    return cloud;
}

static std::vector<Cloud> makeClouds()
{
    std::vector<Cloud> clouds;
    int seed = 400;
    for (const Bank &bank : BANKS)
    {
        for (int i = 0; i < bank.count; ++i)
            clouds.push_back(makeCloud(bank, i, seed));
        seed += 100;
    }
    return clouds;
}

// Light of a cloud at (x, y) from its middle and base; *cover becomes 0 (clear) .. 1.
static float cloudLight(const Cloud &cloud, float x, float y, float fray, float *cover)
{
    float nearest = 0;
    float weights = 0;
    float nx = 0;
    float ny = 0;
    float nz = 0;
    for (const Puff &puff : cloud.puffs)
    {
        const float dx = (x - puff.x) / puff.radius;
        const float dy = (y - puff.y) / puff.radius;
        const float inside = 1 - dx * dx - dy * dy + fray;
        if (inside <= 0)
            continue;
        nearest = std::max(nearest, inside);
        const float weight = inside * inside * puff.radius;
        weights += weight;
        nx += weight * dx;
        ny += weight * dy;
        nz += weight * std::sqrt(std::min(inside, 1.0f));
    }
    *cover = soft(0, 0.45f, nearest) * soft(-0.5f, 1.0f, y + 0.6f * fray);
    if (weights <= 0)
        return 0;
    const float size = std::sqrt(nx * nx + ny * ny + nz * nz);
    const float facing = (nx * CLOUD_SUN[0] + ny * CLOUD_SUN[1] + nz * CLOUD_SUN[2]) / size;
    const float lift = soft(0, 0.75f * cloud.halfWidth, y); // undersides lie in shade
    return soft(-0.35f, 0.95f, facing * 0.75f + lift * 0.75f - 0.28f + 0.35f * fray);
}

static Colour clearSky(float x, float y) // x from the middle of the wall, y above the eye
{
    const float rise = y / length(100, x);
    const float band =
        soft(HAZE_BAND[0], HAZE_BAND[1], rise) * soft(HAZE_BAND[2], HAZE_BAND[1], rise);
    return mix(mix(FOG, HAZE_LIGHT, 0.5f * band), ZENITH, soft(GRADIENT[0], GRADIENT[1], rise));
}

static float veil(float x, float y)
{
    const float cells = 6;
    const float warp = fractal(x / WALL * cells, y / WALL * cells, int(cells), 3, 0.5f, 431);
    const float thin = fractal(x / WALL * 8 + warp, y / WALL * 30 + 2.5f * warp, 8, 4, 0.6f, 441);
    return VEIL * soft(12, 40, y) * soft(TOP - 20, TOP - 60, y) * soft(-0.1f, 0.5f, thin);
}

// Clouds are laid out by bearing and elevation, or they would stretch toward the corners of the
// box.
static Colour wallColour(const std::vector<Cloud> &clouds, float wallX, float wallY)
{
    const float tangent = wallX / (WALL / 2) - 1; // of the bearing from the middle of the wall
    const float bearing = tangent * (1 + 0.3476f * (1 - std::fabs(tangent))); // arc tangent, nearly
    const float x = WALL / 2 * (1 + bearing);
    const float y = wallY / length(1, tangent);
    const float window = soft(TOP - 2, TOP - 18, wallY);
    Colour colour = mix(clearSky(wallX - WALL / 2, wallY), CLOUD_LIT, window * veil(x, y));
    const float rough = fractal(x / WALL * 26, y / WALL * 26, 26, 5, 0.62f, 451) * 1.7f;
    for (const Cloud &cloud : clouds) // the near ones come last
    {
        float dx = x - cloud.x;
        dx -= WALL * std::floor(dx / WALL + 0.5f); // a cloud that leaves right comes in left
        const float dy = y - cloud.base;
        if (std::fabs(dx) > cloud.halfWidth * 1.2f || dy < -3 || dy > cloud.halfWidth * 1.2f)
            continue;
        float cover = 0;
        const float light = cloudLight(cloud, dx, dy, FLUFF * 2 * rough, &cover);
        const Colour lit = mix(CLOUD_SHADE, CLOUD_LIT, light);
        const float clear = soft(HAZE[0], HAZE[1], y);
        colour = mix(colour, lit, window * cover * mix(0.35f, 0.96f, clear));
    }
    return colour;
}

// Around the rim the ceiling has the colour in which the walls end.
static Colour ceilingColour(float s, float t)
{
    const float x = (s - CEILING_FROM) / (CEILING_TO - CEILING_FROM) * 2 - 1; // -1..1 across
    const float y = (t - CEILING_FROM) / (CEILING_TO - CEILING_FROM) * 2 - 1;
    const float window = soft(0.95f, 0.45f, std::max(std::fabs(x), std::fabs(y)));
    const float thin = fractal(x * 2.3f, y * 2.3f, 0, 5, 0.5f, 471);
    return mix(ZENITH, CLOUD_LIT, 0.45f * window * soft(-0.1f, 0.5f, thin));
}

int paintSky(const Output &output)
{
    const std::vector<Cloud> clouds = makeClouds();
    Canvas canvas(SKY_WIDTH, SKY_HEIGHT);
    canvas.paint(
        [&](int column, int row)
        {
            const float s = (float(column) + 0.5f) / SKY_WIDTH;
            const float t = (float(row) + 0.5f) / SKY_HEIGHT;
            if (s < CEILING_TO + CEILING_MARGIN && t < CEILING_TO + CEILING_MARGIN)
                return ceilingColour(s, t);
            const float y = t * WALL - BELOW_EYE;
            const Colour colour = y > 0 ? wallColour(clouds, s * WALL, y) : FOG;
            const int outermost = column == 0 || column == SKY_WIDTH - 1 || row == SKY_HEIGHT - 1;
            return outermost ? colour * EDGE_LIGHT : colour;
        });
    canvas.at(0, 0) = FOG; // the floor
    return saveColours(output, "TexSkyBox", canvas);
}
