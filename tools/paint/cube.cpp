// The face of the cube: worn stone in a bronze frame, with an arrow that points up.
#include "painters.h"
#include "progress.h"

constexpr int FACE = 512;   // texels along an edge
constexpr float FRAME = 58; // width of the bronze
constexpr float BEVEL = 9;  // width of the bevel along both edges of the bronze
constexpr float GROOVE = 5; // width of the groove between bronze and stone
constexpr float RIVET = 11; // radius

constexpr Colour STONE = hex(0xFFF6E2); // bright, since the game shows half of the brightness
constexpr Colour STONE_DARK = hex(0xD8C49E);
constexpr Colour BRONZE = hex(0xFFB84C);
constexpr Colour BRONZE_DARK = hex(0x965820);
constexpr Colour BRONZE_LIGHT = hex(0xFFE9A8);
constexpr Colour ENAMEL = hex(0xE8261A);
constexpr Colour GOLD = hex(0xFFD84A);
constexpr Colour SHADE = hex(0x3A2A1E);

static Colour stoneAt(float x, float y)
{
    const float broad = fractal(x / 130, y / 130, 0, 4, 0.6f, 501);
    const float pits = fractal(x / 14, y / 14, 0, 2, 0.6f, 511);
    const float vein = std::fabs(fractal(x / 190, y / 190, 0, 4, 0.55f, 521));
    Colour colour = mix(STONE, STONE_DARK, std::clamp(0.30f + 0.9f * broad, 0.0f, 1.0f));
    colour = mix(colour, STONE_DARK * 0.72f, 0.75f * soft(0.022f, 0.004f, vein));
    return mix(colour * (1 + 0.05f * pits), STONE_DARK * 0.8f, 0.6f * soft(0.38f, 0.6f, pits));
}

// The frame looks raised and lit from the upper left: edges that face the light are light.
static Colour bronzeAt(float x, float y, float fromEdge)
{
    const float worn = fractal(x / 60, y / 60, 0, 4, 0.6f, 531);
    const float brushed = 0.05f * noiseAt((x + y) / 3, (x - y) / 50, 0, 541);
    const Colour sheet = mix(BRONZE, BRONZE_DARK, std::clamp(0.18f + 0.7f * worn, 0.0f, 0.8f));
    const float toInside = FRAME - fromEdge;
    const bool lowerRight = y < x;
    const float outer = soft(BEVEL, 0, fromEdge);
    const float inner = soft(BEVEL, 0, toInside);
    const Colour rim = mix(sheet, lowerRight ? BRONZE_DARK : BRONZE_LIGHT, 0.65f * outer);
    return mix(rim, lowerRight ? BRONZE_LIGHT : BRONZE_DARK, 0.65f * inner) * (1 + brushed);
}

static void paintRivet(Canvas &face, float x, float y)
{
    fillDisc(face, x + 2, y - 3, RIVET + 2, SHADE, 0.55f);
    fillDisc(face, x, y, RIVET, BRONZE_DARK);
    fillDisc(face, x - 1, y + 1, RIVET - 2, BRONZE);
    fillDisc(face, x - 3, y + 4, RIVET * 0.38f, BRONZE_LIGHT);
}

static void paintRivets(Canvas &face)
{
    constexpr float NEAR = FRAME / 2;
    constexpr float FAR = FACE - NEAR;
    for (int i = 0; i < 4; ++i)
    {
        const float along = mix(NEAR, FAR, float(i) / 4);
        paintRivet(face, along, NEAR);
        paintRivet(face, FAR, along);
        paintRivet(face, FACE - along, FAR);
        paintRivet(face, NEAR, FACE - along);
    }
}

// Three strokes of the same width: a shaft and the two wings of the head.
static void paintArrow(Canvas &face, float drop, float halfWidth, Colour colour)
{
    const float middle = FACE / 2.0f;
    const float head = 365 - drop;
    const float wing = 265 - drop;
    drawLine(face, {middle - 82, wing, middle, head}, halfWidth, colour);
    drawLine(face, {middle + 82, wing, middle, head}, halfWidth, colour);
    drawLine(face, {middle, 160 - drop, middle, head - 12}, halfWidth, colour);
}

static void paintEmblem(Canvas &face)
{
    const float middle = FACE / 2.0f;
    constexpr float RING = 150;
    fillRing(face, middle + 3, middle - 4, RING, 15, SHADE, 0.5f);
    fillRing(face, middle, middle, RING, 14, BRONZE_DARK);
    fillRing(face, middle, middle, RING, 11, GOLD);
    fillRing(face, middle - 1, middle + 1.5f, RING, 4, BRONZE_LIGHT);
    paintArrow(face, 5, 26, STONE_DARK * 0.6f);
    paintArrow(face, 0, 25, GOLD);
    paintArrow(face, 0, 19, ENAMEL);
    paintArrow(face, -3, 6, mix(ENAMEL, STONE, 0.35f));
}

Canvas makeCubeFace()
{
    Canvas face(FACE, FACE);
    face.paint(
        [](int x, int y)
        {
            const float px = float(x) + 0.5f;
            const float py = float(y) + 0.5f;
            const float fromEdge = std::min({px, FACE - px, py, FACE - py});
            const float inside = fromEdge - FRAME;
            const Colour stone = mix(SHADE, stoneAt(px, py), soft(0, GROOVE * 3, inside + 3));
            return inside > 0 ? stone : bronzeAt(px, py, fromEdge);
        });
    paintEmblem(face);
    paintRivets(face);
    return face;
}

Canvas makePlainCubeFace()
{
    Canvas face(FACE, FACE, 1, STONE);
    constexpr float MIDDLE = FACE / 2.0f;
    for (const float wing : {-1.0f, 1.0f})
        drawLine(face, {MIDDLE + wing * 125, 270, MIDDLE, 395}, 40, ENAMEL);
    drawLine(face, {MIDDLE, 110, MIDDLE, 380}, 40, ENAMEL);
    constexpr float WIDE = FRAME * 1.3f;
    fillBox(face, {0, 0, WIDE, FACE}, BRONZE);
    fillBox(face, {FACE - WIDE, 0, FACE, FACE}, BRONZE);
    fillBox(face, {0, 0, FACE, WIDE}, BRONZE);
    fillBox(face, {0, FACE - WIDE, FACE, FACE}, BRONZE);
    return face;
}

void paintCube(Images &images)
{
    startStage("Painting the cube");
    addColours(images, "TexCube", makeCubeFace());
}
