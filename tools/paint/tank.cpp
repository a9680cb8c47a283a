// The texture atlas of the tank. Its sides are divided into 32 units; positions here are in these
// units, and the game's texture coordinates are multiples of them.
#include "painters.h"
#include "progress.h"

constexpr int ATLAS = 512;
constexpr float UNIT = ATLAS / 32.0f; // texels

constexpr Colour PAINT =
    hex(0xFFF0BC); // bright, since the game shows a third of it on upright faces
constexpr Colour PAINT_TOP = hex(0xF6E2AC);
constexpr Colour CAMOUFLAGE = hex(0xE4BE6C);
constexpr Colour SEAM = hex(0x5B4A2A);
constexpr Colour EDGE_LIGHT = hex(0xFFFBE6);
constexpr Colour STEEL = hex(0xA4A8AE);
constexpr Colour STEEL_LIGHT = hex(0xE8EDF2);
constexpr Colour RUBBER = hex(0x2A2724);
constexpr Colour LINK = hex(0x6C645A);
constexpr Colour LINK_LIGHT = hex(0xB4AA9A);
constexpr Colour WARNING = hex(0xFF2A14);
constexpr Colour GLOW = hex(0xFF6A30);

// Half a unit larger on each side than the part that is shown: the texture filter reads beyond that
// part.
constexpr Box ARMOUR = {0.5f, 0.5f, 15.5f, 15.5f};
constexpr Box TOP = {15.5f, 0.5f, 31.5f, 19.5f};
constexpr Box LINKS = {7.5f, 15.5f, 14.5f, 31.5f};
constexpr Box TRACK_SIDE = {14.5f, 19.5f, 31.9f, 31.9f};
constexpr Box BARREL_TOP = {0.5f, 18.5f, 3.5f, 31.9f};
constexpr Box BARREL_SIDE = {3.5f, 18.5f, 5.5f, 31.9f};
constexpr Box MUZZLE = {0.5f, 15.5f, 3.5f, 18.5f};

static void rivet(Canvas &atlas, float x, float y)
{
    fillDisc(atlas, x + 0.06f, y - 0.08f, 0.22f, SEAM, 0.7f);
    fillDisc(atlas, x, y, 0.17f, EDGE_LIGHT);
}

static void panelSeam(Canvas &atlas, Box ends)
{
    drawLine(atlas, ends, 0.09f, SEAM);
    drawLine(atlas, {ends.x0 + 0.14f, ends.y0 - 0.14f, ends.x1 + 0.14f, ends.y1 - 0.14f}, 0.05f,
             EDGE_LIGHT, 0.7f);
}

static void camouflage(Canvas &atlas, Box b, Colour base, int seed)
{
    for (int y = int(b.y0 * UNIT); y < int(b.y1 * UNIT); ++y)
        for (int x = int(b.x0 * UNIT); x < int(b.x1 * UNIT); ++x)
        {
            const float u = float(x) / UNIT;
            const float v = float(y) / UNIT;
            const float blotch = fractal(u / 4.5f, v / 4.5f, 0, 3, 0.5f, seed);
            const float dirt = fractal(u * 1.3f, v * 1.3f, 0, 3, 0.6f, seed + 10);
            const Colour paint = mix(base, CAMOUFLAGE, 0.85f * soft(0.10f, 0.16f, blotch));
            atlas.at(x, y) = paint * (0.97f + 0.10f * dirt);
        }
}

// The picture on every upright face of hull and turret: a dark lower edge and a glowing slit above.
static void paintArmour(Canvas &atlas)
{
    camouflage(atlas, ARMOUR, PAINT, 601);
    fillBox(atlas, {0.5f, 0.5f, 15.5f, 3.2f}, SEAM, 0.3f);
    fillBox(atlas, {0.5f, 14.1f, 15.5f, 15.5f}, EDGE_LIGHT, 0.85f);
    panelSeam(atlas, {0.5f, 14.0f, 15.5f, 14.0f});
    panelSeam(atlas, {0.5f, 3.2f, 15.5f, 3.2f});
    panelSeam(atlas, {4.2f, 3.2f, 4.2f, 14.0f});
    panelSeam(atlas, {11.8f, 3.2f, 11.8f, 14.0f});
    drawLine(atlas, {5.6f, 10.9f, 10.4f, 10.9f}, 1.15f, SEAM);
    drawLine(atlas, {5.6f, 10.9f, 10.4f, 10.9f}, 0.85f, RUBBER);
    drawLine(atlas, {6.0f, 10.9f, 10.0f, 10.9f}, 0.38f, GLOW);
    for (int i = 0; i < 5; ++i) // warning stripes
        drawLine(atlas, {4.9f + 1.3f * float(i), 4.2f, 6.1f + 1.3f * float(i), 7.4f}, 0.36f,
                 WARNING);
    for (int i = 0; i < 6; ++i)
    {
        const float along = 1.3f + 2.48f * float(i);
        rivet(atlas, along, 13.2f);
        rivet(atlas, along, 2.2f);
        rivet(atlas, i % 2 ? 3.3f : 12.7f, 4.2f + 1.6f * float(i));
    }
}

// The top of the hull, with a hatch and a grille. The front of the tank is up.
static void paintTop(Canvas &atlas)
{
    camouflage(atlas, TOP, PAINT_TOP, 631);
    panelSeam(atlas, {16.0f, 15.0f, 31.0f, 15.0f});
    panelSeam(atlas, {16.0f, 6.0f, 31.0f, 6.0f});
    fillBox(atlas, {17.6f, 1.5f, 29.4f, 5.1f}, SEAM);
    for (int i = 0; i < 5; ++i)
        fillBox(atlas, {18.0f, 1.75f + 0.68f * float(i), 29.0f, 2.1f + 0.68f * float(i)},
                i % 2 ? STEEL : LINK_LIGHT);
    fillDisc(atlas, 23.7f, 10.2f, 3.5f, SEAM);
    fillDisc(atlas, 23.5f, 10.5f, 3.2f, STEEL);
    fillDisc(atlas, 23.4f, 10.6f, 2.8f, PAINT_TOP);
    fillRing(atlas, 23.4f, 10.6f, 1.7f, 0.1f, SEAM);
    drawLine(atlas, {22.3f, 10.6f, 24.5f, 10.6f}, 0.24f, WARNING);
    drawLine(atlas, {23.4f, 9.5f, 23.4f, 11.7f}, 0.24f, WARNING);
    fillBox(atlas, {16.0f, 16.3f, 31.0f, 17.7f}, WARNING, 0.9f); // a band that is seen from afar
    for (int i = 0; i < 7; ++i)
    {
        rivet(atlas, 17.0f + 2.17f * float(i), 18.4f);
        rivet(atlas, i % 2 ? 17.2f : 29.8f, 7.0f + 1.15f * float(i));
    }
}

static void paintLinks(Canvas &atlas)
{
    fillBox(atlas, LINKS, RUBBER);
    for (int i = 0; i < 16; ++i)
    {
        const float y = 15.5f + float(i);
        fillBox(atlas, {7.5f, y + 0.18f, 14.5f, y + 0.82f}, LINK);
        fillBox(atlas, {7.5f, y + 0.62f, 14.5f, y + 0.82f}, LINK_LIGHT);
        fillBox(atlas, {9.2f, y, 9.7f, y + 1}, RUBBER);
        fillBox(atlas, {12.3f, y, 12.8f, y + 1}, RUBBER);
    }
}

// The outer side of a track. The front is at the left, and it is lower than the back: the upper
// edge of the track rises from (15, 26) to (31, 31).
static void paintTrackSide(Canvas &atlas)
{
    fillBox(atlas, TRACK_SIDE, RUBBER);
    constexpr int WHEELS = 5;
    for (int i = 0; i < 24; ++i)
    {
        const float x = 14.7f + 0.7f * float(i);
        const float top = 26 + (x - 15) * 5 / 16;
        fillBox(atlas, {x, 19.5f, x + 0.45f, 21.0f}, LINK_LIGHT);
        fillBox(atlas, {x, top - 1.1f, x + 0.45f, top + 1}, LINK_LIGHT);
    }
    for (int i = 0; i < WHEELS; ++i)
    {
        const float x = 16.7f + 3.1f * float(i);
        const float y = 22.8f + 0.22f * float(i);
        fillDisc(atlas, x, y, 1.45f, LINK);
        fillDisc(atlas, x, y, 1.2f, CAMOUFLAGE);
        fillDisc(atlas, x, y, 0.95f, PAINT);
        fillDisc(atlas, x, y, 0.4f, SEAM);
        fillDisc(atlas, x, y, 0.2f, STEEL_LIGHT);
    }
    drawLine(atlas, {17.2f, 25.0f, 30.3f, 28.4f}, 0.4f, CAMOUFLAGE); // mudguard
    drawLine(atlas, {17.2f, 25.2f, 30.3f, 28.6f}, 0.12f, PAINT);
}

// The muzzle is up in the picture of the barrel's upper side, and down in that of its flanks.
static void paintBarrel(Canvas &atlas)
{
    fillBox(atlas, BARREL_TOP, STEEL);
    fillBox(atlas, {1.2f, 18.5f, 2.2f, 31.9f}, STEEL_LIGHT);
    fillBox(atlas, {0.5f, 29.4f, 3.5f, 31.9f}, RUBBER);
    fillBox(atlas, {0.5f, 28.6f, 3.5f, 29.0f}, WARNING);
    fillBox(atlas, {0.5f, 18.5f, 3.5f, 20.5f}, PAINT);
    fillBox(atlas, BARREL_SIDE, STEEL);
    fillBox(atlas, {3.5f, 18.5f, 4.4f, 31.9f}, STEEL_LIGHT);
    fillBox(atlas, {3.5f, 18.5f, 5.5f, 21.1f}, RUBBER);
    fillBox(atlas, {3.5f, 21.5f, 5.5f, 21.9f}, WARNING);
    fillBox(atlas, {3.5f, 30.0f, 5.5f, 31.9f}, PAINT);
    fillBox(atlas, MUZZLE, LINK);
    fillDisc(atlas, 2, 17, 0.95f, STEEL);
    fillDisc(atlas, 2, 17, 0.68f, RUBBER);
}

void paintTank(Images &images)
{
    startStage("Painting the tank");
    Canvas atlas(ATLAS, ATLAS, UNIT, CAMOUFLAGE);
    paintTrackSide(atlas);
    paintLinks(atlas);
    paintArmour(atlas);
    paintTop(atlas);
    paintBarrel(atlas);
    addColours(images, "TexTank", atlas);
}
