// The icons: the cube rolls over a hill. Positions are fractions of the icon's side, with y up.
#include "painters.h"

#include <cstdio>
#include <iterator>
#include <png.h>

constexpr int SIZES[] = {16, 22, 24, 32, 48, 64, 96, 128, 256};
constexpr int DETAILED = 64; // pixels; a smaller icon shows only the cube and the hill
constexpr int GRAIN = 1024;  // most samples along a side of an icon; each pixel has equally many

constexpr Colour ZENITH = hex(0x1668C8);
constexpr Colour HORIZON = hex(0x8FDCF6);
constexpr Colour CLOUD = hex(0xFFFFFF);
constexpr Colour CLOUD_BASE = hex(0xB4DDF2);
constexpr Colour FAR_HILL = hex(0x4FA06A);
constexpr Colour GRASS = hex(0x7CC928);
constexpr Colour GRASS_DARK = hex(0x2F8418);
constexpr Colour EARTH = hex(0x7A4A22);

constexpr float CUBE_X = 0.5f;
constexpr float CUBE_Y = 0.53f;
constexpr float EYE_DISTANCE = 2.6f; // from the picture

namespace
{
struct Point
{
    float x, y, z; // z toward the eye
};

struct Scene
{
    Canvas face;
    Canvas walker;
    Point axis[3]; // of the cube
    float half;    // of its edge
    bool detailed;
};

struct Hit
{
    int face;    // index of the axis to which the face that was hit is perpendicular
    float side;  // 1 or -1: the end of that axis
    float at[3]; // coordinates of the hit along the three axes, -1..1
};

struct Walker
{
    float x, y, height;
    bool mirrored;
};

struct Puff
{
    float x, y, radius;
};
} // namespace

// People who flee down the slopes.
constexpr Walker WALKERS[] = {{0.125f, 0.160f, 0.145f, false},
                              {0.868f, 0.150f, 0.150f, true},
                              {0.285f, 0.075f, 0.165f, false},
                              {0.735f, 0.062f, 0.170f, true}};

constexpr Puff PUFFS[] = {{0.10f, 0.66f, 0.060f}, {0.18f, 0.69f, 0.080f}, {0.27f, 0.67f, 0.055f},
                          {0.76f, 0.76f, 0.050f}, {0.83f, 0.79f, 0.065f}, {0.90f, 0.765f, 0.050f}};

static float dot(Point a, Point b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// Rotates (a, b) by an angle. halfTangent is the tangent of half the angle.
static void turn(float &a, float &b, float halfTangent)
{
    const float square = halfTangent * halfTangent;
    const float c = (1 - square) / (1 + square);
    const float s = 2 * halfTangent / (1 + square);
    const float turned = a * c - b * s;
    b = a * s + b * c;
    a = turned;
}

static Scene makeScene(int size)
{
    const bool detailed = size >= DETAILED;
    Scene scene = {detailed ? makeCubeFace() : makePlainCubeFace(),
                   makeWalker(),
                   {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                   detailed ? 0.235f : 0.27f,
                   detailed};
    for (Point &axis : scene.axis)
    {
        turn(axis.z, axis.x, -0.33f); // the front faces left
        turn(axis.y, axis.z, 0.25f);  // the top becomes visible
        turn(axis.x, axis.y, 0.10f);  // the cube leans as it rolls
    }
    return scene;
}

static Colour texelAt(const Canvas &picture, float u, float v)
{
    return picture.clamped(int(u * float(picture.width)), int(v * float(picture.height)));
}

// Finds where the line of sight enters the cube. Returns false when it misses the cube.
static bool meetCube(const Scene &scene, float x, float y, Hit &hit)
{
    constexpr Point EYE = {0, 0, EYE_DISTANCE};
    const Point sight = {x - CUBE_X, y - CUBE_Y, -EYE_DISTANCE};
    float entry = 0;
    float exit = 1e9f;
    for (int i = 0; i < 3; ++i)
    {
        const float from = dot(EYE, scene.axis[i]);
        const float along = dot(sight, scene.axis[i]);
        hit.side = along < 0 ? 1.0f : -1.0f;
        const float near = (hit.side * scene.half - from) / along;
        if (near > entry)
            hit.face = i;
        entry = std::max(entry, near);
        exit = std::min(exit, (-hit.side * scene.half - from) / along);
    }
    for (int i = 0; i < 3; ++i)
        hit.at[i] = (dot(EYE, scene.axis[i]) + dot(sight, scene.axis[i]) * entry) / scene.half;
    hit.side = hit.at[hit.face] < 0 ? -1.0f : 1.0f;
    return entry < exit;
}

static Colour cubeColour(const Scene &scene, const Hit &hit)
{
    constexpr Point LIGHT = {-0.36f, 0.80f, 0.48f};
    const float u = hit.face == 0 ? -hit.at[2] * hit.side : hit.at[0];
    const float v = hit.face == 1 ? -hit.at[2] * hit.side : hit.at[1];
    const float shine = std::max(dot(scene.axis[hit.face], LIGHT) * hit.side, 0.0f);
    return texelAt(scene.face, 0.5f + 0.5f * u, 0.5f + 0.5f * v) * (0.72f + 0.38f * shine);
}

static float hillAt(float x)
{
    return 0.31f - 0.75f * square(x - 0.5f);
}

static Colour skyAt(const Scene &scene, float x, float y)
{
    Colour sky = mix(HORIZON, ZENITH, soft(0.25f, 1.0f, y));
    if (!scene.detailed)
        return sky;
    for (const Puff &puff : PUFFS)
    {
        const float inside = soft(puff.radius, puff.radius * 0.9f, length(x - puff.x, y - puff.y));
        const float base = puff.y - puff.radius * 0.45f;
        sky = mix(sky, mix(CLOUD_BASE, CLOUD, soft(base, puff.y + puff.radius * 0.3f, y)),
                  inside * soft(base - 0.004f, base, y));
    }
    const float ridge = 0.30f + 0.05f * noiseAt(x * 3.4f, 0.5f, 0, 701);
    return mix(sky, mix(FAR_HILL, HORIZON, 0.35f), soft(ridge, ridge - 0.006f, y));
}

static Colour groundAt(const Scene &scene, float x, float y)
{
    const float depth = hillAt(x) - y;
    const float patches = scene.detailed ? fractal(x * 7, y * 14, 0, 4, 0.6f, 711) : 0;
    Colour grass =
        mix(GRASS, GRASS_DARK, std::clamp(soft(0, 0.34f, depth) + 0.5f * patches, 0.0f, 1.0f));
    // The shadow is where the cube will land.
    const float under = length((x - CUBE_X - 0.03f) / 0.30f, (y - 0.225f) / 0.075f);
    grass = mix(grass, EARTH, 0.8f * soft(1.0f, 0.55f, under));
    return grass * mix(1, 0.55f, soft(0.95f, 0.3f, under));
}

static void addWalker(const Scene &scene, const Walker &walker, float x, float y, Colour &colour)
{
    const float u = (x - walker.x) / walker.height + 0.5f;
    const float v = (y - walker.y) / walker.height;
    colour = colour * mix(1, 0.6f, soft(0.36f, 0.2f, length(u - 0.5f, (v - 0.04f) * 4)));
    if (u < 0 || u >= 1 || v < 0 || v >= 1)
        return;
    const Colour cloth = texelAt(scene.walker, walker.mirrored ? 1 - u : u, v);
    if (cloth.r + cloth.g + cloth.b > 0)
        colour = cloth;
}

// The background is a square with round corners: the value is below 1 inside the square.
static float tileAt(float x, float y)
{
    return square(square(2 * x - 1)) + square(square(2 * y - 1));
}

static Paint sampleAt(const Scene &scene, float x, float y)
{
    const float tile = tileAt(x, y);
    Colour colour = y < hillAt(x) ? groundAt(scene, x, y) : skyAt(scene, x, y);
    colour = colour * mix(1, 0.72f, soft(0.80f, 1, tile));
    Hit hit = {};
    const bool cube = meetCube(scene, x, y, hit);
    if (cube)
        colour = cubeColour(scene, hit);
    if (scene.detailed)
        for (const Walker &walker : WALKERS)
            addWalker(scene, walker, x, y, colour);
    return {colour, cube || tile < 1 ? 1.0f : 0.0f};
}

// The mean of the samples of one pixel.
static Paint pixelAt(const Scene &scene, int size, int px, int py)
{
    const int grain = GRAIN / size;
    const float step = 1 / float(size * grain);
    Colour sum = {0, 0, 0};
    float opacity = 0;
    for (int i = 0; i < grain * grain; ++i)
    {
        const float x = (float(px * grain + i % grain) + 0.5f) * step;
        const float y = (float(py * grain + i / grain) + 0.5f) * step;
        const Paint sample = sampleAt(scene, x, y);
        sum = sum + sample.colour * sample.opacity;
        opacity += sample.opacity;
    }
    return opacity > 0 ? Paint{sum * (1 / opacity), opacity / float(grain * grain)} : Paint();
}

static bool saveIcon(const char *folder, const Grid<Paint> &icon)
{
    std::vector<unsigned char> bytes;
    bytes.reserve(icon.cells.size() * 4);
    for (const Paint &p : icon.cells)
        bytes.insert(bytes.end(), {toByte(p.colour.r), toByte(p.colour.g), toByte(p.colour.b),
                                   toByte(p.opacity)});
    png_image picture = {};
    picture.version = PNG_IMAGE_VERSION;
    picture.width = png_uint_32(icon.width);
    picture.height = png_uint_32(icon.height);
    picture.format = PNG_FORMAT_RGBA;
    const int upsideDown = -icon.width * 4; // PNG rows start at the top
    const std::string path = std::string(folder) + "/" + std::to_string(icon.width) + ".png";
    if (png_image_write_to_file(&picture, path.c_str(), 0, bytes.data(), upsideDown, nullptr))
        return true;
    fprintf(stderr, "paint_icons: cannot write %s: %s\n", path.c_str(), picture.message);
    return false;
}

static bool paintIcon(const char *folder, int size)
{
    const Scene scene = makeScene(size);
    Grid<Paint> icon(size, size);
    icon.paint([&](int x, int y) { return pixelAt(scene, size, x, y); });
    return saveIcon(folder, icon);
}

bool paintIcons(const char *folder)
{
    return std::all_of(std::begin(SIZES), std::end(SIZES),
                       [=](int size) { return paintIcon(folder, size); });
}
