// The sky box: one picture for all four walls. The ceiling shows the bottom left corner of this
// picture, because the land hides that corner on the walls.
#include "painters.h"
#include "progress.h"

// Units of the box: each wall is 100 from the eye and 200 wide. It reaches from 85 below the eye to
// 115 above.
constexpr int SKY_SIZE = 1024; // texels; on the display a wall is 1,330 pixels wide
constexpr float WALL = 200;
constexpr float BELOW_EYE = 85;
constexpr float TOP = WALL - BELOW_EYE;
constexpr float CEILING_FROM = 0.002f; // the part of the picture that the ceiling shows
constexpr float CEILING_TO = 0.1f;
constexpr float CEILING_MARGIN =
    0.006f; // painted around that part, since the texture filter reads beyond it

constexpr Colour FOG = {39.0f / 255, 168.0f / 255, 221.0f / 255}; // the game's own
// The floor has this colour, and OpenGL's old clamping mixes it in at the edges of the walls. The
// edges would be visible as lines if this colour were not close to all the colours of the clear sky
// there, in hue and in lightness.
constexpr Colour EDGE = hex(0x2BA3E4);
constexpr Colour AZURE = hex(0x289DEC);
constexpr Colour ZENITH = hex(0x1E74CC);     // visible almost only on the ceiling
constexpr Colour HAZE_LIGHT = hex(0x54BCEC); // a paler band behind the far hills
constexpr float HAZE_STRENGTH = 0.5f;
// Sines of the elevation. Between the two of a pair, the first colour turns into the second.
constexpr float FOG_TO_EDGE[] = {-0.20f, -0.45f};
constexpr float FOG_TO_AZURE[] = {0.06f, 0.50f};
constexpr float AZURE_TO_ZENITH[] = {0.68f, 1.02f};
constexpr float HAZE_BAND[] = {0, 0.12f, 0.40f}; // where the pale band begins, peaks and ends
constexpr Colour CLOUD_LIT = hex(0xFFFDF6);
constexpr Colour CLOUD_SHADE = hex(0x8FB9DC);
constexpr float CLOUD_SUN[] = {-0.45f, 0.75f, 0.48f}; // toward the sun: left, up, to the viewer
constexpr float FLUFF = 0.30f; // how far noise moves the outline of a cloud, in radii of a puff
// Units above the horizon: haze is thickest over clouds below the first height and ends at the
// second.
constexpr float HAZE[] = {-6, 26};
constexpr float VEIL = 0.24f; // strength of the thin high cloud

// The sky must be clear where two walls meet. Distances in units from there.
constexpr float CLOUDLESS = 1.5f;
constexpr float THINNING = 60;      // haze and thin cloud fade over this distance
constexpr float LEAST_HAZE = 0.25f; // factor on the haze where two walls meet

constexpr int PUFFS = 30; // in each cloud

namespace
{
struct Puff
{
    float x, y, radius;
};

struct Cloud
{
    float x, base, halfWidth; // units; base is the height of the flat underside
    int seed;
    Puff puffs[PUFFS];
};

struct Bank // clouds at the same distance
{
    int count;
    float base, spread;      // the undersides lie from base to base + spread above the horizon
    float narrowest, widest; // half widths
};
} // namespace

constexpr Bank BANKS[] = {{11, -3, 5, 6, 16}, {6, 18, 9, 10, 21}, {3, 44, 10, 17, 26}};

static Cloud makeCloud(const Bank &bank, int number, int seed)
{
    const float place =
        (float(number) + 0.8f * scatter(number, 0, seed)) / (float(bank.count) - 0.2f);
    const float halfWidth = mix(bank.narrowest, bank.widest, scatter(number, 2, seed));
    const float room = 1.1f * halfWidth + CLOUDLESS;
    Cloud cloud = {mix(room, WALL - room, place),
                   bank.base + bank.spread * scatter(number, 1, seed),
                   halfWidth,
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

// How brightly a cloud is lit, 0..1, at a point that is x to the right of its middle and y above
// its base. *cover becomes the opacity there, 0..1.
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
    const float lift = soft(0, 0.75f * cloud.halfWidth, y); // undersides are in the shade
    return soft(-0.35f, 0.95f, facing * 0.75f + lift * 0.75f - 0.28f + 0.35f * fray);
}

// The sine of the elevation of the direction (x, y, z) from the eye.
static float elevation(float x, float y, float z)
{
    return y / length(y, length(x, z));
}

static Colour clearSky(float rise)
{
    if (rise < 0)
        return mix(FOG, EDGE, soft(FOG_TO_EDGE[0], FOG_TO_EDGE[1], rise));
    const Colour low = mix(FOG, AZURE, soft(FOG_TO_AZURE[0], FOG_TO_AZURE[1], rise));
    return mix(low, ZENITH, soft(AZURE_TO_ZENITH[0], AZURE_TO_ZENITH[1], rise));
}

static float haze(float rise)
{
    return HAZE_STRENGTH * soft(HAZE_BAND[0], HAZE_BAND[1], rise) *
           soft(HAZE_BAND[2], HAZE_BAND[1], rise);
}

static float veil(float x, float y)
{
    const float warp = fractal(x / WALL * 6, y / WALL * 6, 0, 3, 0.5f, 431);
    const float thin = fractal(x / WALL * 8 + warp, y / WALL * 30 + 2.5f * warp, 0, 4, 0.6f, 441);
    return VEIL * soft(12, 40, y) * soft(TOP - 20, TOP - 60, y) * soft(-0.1f, 0.5f, thin);
}

// Clouds are placed by bearing and elevation. If they were placed by position on the wall, they
// would look wider toward the corners of the box.
static Colour wallColour(const std::vector<Cloud> &clouds, float wallX, float wallY)
{
    const float tangent =
        wallX / (WALL / 2) - 1; // of the bearing, measured from the middle of the wall
    const float bearing =
        tangent * (1 + 0.3476f * (1 - std::fabs(tangent))); // about the arc tangent
    const float x = WALL / 2 * (1 + bearing);
    const float y = wallY / length(1, tangent);
    const float window = soft(TOP - 2, TOP - 18, wallY);
    const float inner = soft(0, THINNING, std::min(wallX, WALL - wallX));
    const float rise = elevation(wallX - WALL / 2, wallY, WALL / 2);
    Colour colour = mix(clearSky(rise), HAZE_LIGHT, mix(LEAST_HAZE, 1, inner) * haze(rise));
    colour = mix(colour, CLOUD_LIT, window * inner * veil(x, y));
    const float rough = fractal(x / WALL * 26, y / WALL * 26, 0, 5, 0.62f, 491) * 1.7f;
    for (const Cloud &cloud : clouds) // the nearest clouds are last and cover the others
    {
        const float dx = x - cloud.x;
        const float dy = y - cloud.base;
        if (std::fabs(dx) > cloud.halfWidth * 1.2f || dy < -3 || dy > cloud.halfWidth * 1.2f)
            continue;
        float cover = 0;
        const float light = cloudLight(cloud, dx, dy, FLUFF * 2 * rough, &cover);
        const Colour lit = mix(CLOUD_SHADE, CLOUD_LIT, light);
        const float clear = soft(HAZE[0], HAZE[1], y);
        colour = mix(colour, lit, window * cover * mix(0.25f, 0.96f, clear));
    }
    return colour;
}

// The border of the ceiling is clear sky like the upper edges of the walls, where it meets them.
static Colour ceilingColour(float s, float t)
{
    const float x = (s - CEILING_FROM) / (CEILING_TO - CEILING_FROM) * 2 - 1; // -1..1 across
    const float y = (t - CEILING_FROM) / (CEILING_TO - CEILING_FROM) * 2 - 1;
    const float window = soft(0.95f, 0.45f, std::max(std::fabs(x), std::fabs(y)));
    const float thin = fractal(x * 2.3f, y * 2.3f, 0, 5, 0.5f, 471);
    return mix(clearSky(elevation(x * WALL / 2, TOP, y * WALL / 2)), CLOUD_LIT,
               0.40f * window * soft(-0.1f, 0.5f, thin));
}

void paintSky(Images &images)
{
    startStage("Painting the sky");
    const std::vector<Cloud> clouds = makeClouds();
    Canvas canvas(SKY_SIZE, SKY_SIZE);
    canvas.paint(
        [&](int column, int row)
        {
            const float s = (float(column) + 0.5f) / SKY_SIZE;
            const float t = (float(row) + 0.5f) / SKY_SIZE;
            if (s < CEILING_TO + CEILING_MARGIN && t < CEILING_TO + CEILING_MARGIN)
                return ceilingColour(s, t);
            return wallColour(clouds, s * WALL, t * WALL - BELOW_EYE);
        });
    canvas.at(0, 0) = EDGE; // the floor
    addColours(images, "TexSkyBox", canvas);
}
