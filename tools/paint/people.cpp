// A walking person, seen from the front and from behind, for people drawn as pictures. The game
// adds the colours of the picture to the background, so black would be invisible and the clothes
// are bright. Pure magenta marks the texels around the figure.
#include "painters.h"
#include "progress.h"

constexpr int BOARD = 256;
constexpr float UNIT = BOARD / 20.0f; // texels per world unit; the picture is 20 x 20 units

constexpr Colour KEY = {1, 0, 1};
constexpr Colour CLEAR = {0, 0, 0}; // until addBoard puts KEY there
constexpr Colour SKIN = hex(0xFFD2A8);
constexpr Colour SKIN_SHADE = hex(0xD99A6C);
constexpr Colour HAIR = hex(0xA8642A);
constexpr Colour SHIRT = hex(0xFF4A36);
constexpr Colour TROUSERS = hex(0x5A96FF);
constexpr Colour BOOTS = hex(0xC89450);
constexpr Colour PACK = hex(0xFFC83C);
constexpr Colour EYES = hex(0x30241C);
constexpr float MIDDLE = 10;

static void limb(Canvas &board, Box ends, float halfWidth, Colour colour)
{
    drawLine(board, ends, halfWidth, colour * 0.75f);
    const Box core = {ends.x0 - 0.2f, ends.y0 + 0.1f, ends.x1 - 0.2f, ends.y1 + 0.1f};
    drawLine(board, core, halfWidth - 0.25f, colour);
}

// The figure takes a step and swings its arms. side is 1 from the front and -1 from behind.
static void paintBody(Canvas &board, float side)
{
    limb(board, {MIDDLE + 1.2f * side, 7.6f, MIDDLE + 1.7f * side, 1.3f}, 1.0f, TROUSERS);
    limb(board, {MIDDLE - 1.2f * side, 7.6f, MIDDLE - 1.8f * side, 2.1f}, 1.0f, TROUSERS);
    limb(board, {MIDDLE + 1.5f * side, 0.8f, MIDDLE + 2.2f * side, 0.8f}, 0.75f, BOOTS);
    limb(board, {MIDDLE - 1.6f * side, 1.6f, MIDDLE - 2.3f * side, 1.6f}, 0.75f, BOOTS);
    limb(board, {MIDDLE + 2.4f * side, 12.9f, MIDDLE + 4.3f * side, 9.6f}, 0.85f, SHIRT);
    limb(board, {MIDDLE - 2.4f * side, 12.9f, MIDDLE - 4.5f * side, 15.4f}, 0.85f, SHIRT);
    fillDisc(board, MIDDLE + 4.6f * side, 8.9f, 0.8f, SKIN);
    fillDisc(board, MIDDLE - 4.9f * side, 16.1f, 0.8f, SKIN);
    limb(board, {MIDDLE, 12.2f, MIDDLE, 8.4f}, 2.5f, SHIRT);
    limb(board, {MIDDLE, 14.4f, MIDDLE, 15.0f}, 0.7f, SKIN_SHADE);
}

static void paintFront(Canvas &board)
{
    paintBody(board, 1);
    fillDisc(board, MIDDLE, 17.3f, 2.1f, HAIR);
    fillDisc(board, MIDDLE, 16.8f, 1.8f, SKIN);
    fillDisc(board, MIDDLE - 0.7f, 17.0f, 0.26f, EYES);
    fillDisc(board, MIDDLE + 0.7f, 17.0f, 0.26f, EYES);
    fillDisc(board, MIDDLE, 15.9f, 0.42f, SKIN_SHADE); // mouth, open in alarm
    fillBox(board, {MIDDLE - 2.4f, 7.2f, MIDDLE + 2.4f, 7.9f}, BOOTS);
}

static void paintBack(Canvas &board)
{
    paintBody(board, -1);
    fillDisc(board, MIDDLE, 17.1f, 2.05f, HAIR);
    limb(board, {MIDDLE, 11.8f, MIDDLE, 9.6f}, 2.0f, PACK);
    limb(board, {MIDDLE - 1.2f, 13.3f, MIDDLE + 1.2f, 13.3f}, 0.6f, BOOTS);
    fillBox(board, {MIDDLE - 1.1f, 8.6f, MIDDLE + 1.1f, 10.2f}, BOOTS);
}

static void addBoard(Images &images, const char *name, Canvas &board)
{
    for (Colour &c : board.cells)
        if (c.r + c.g + c.b <= 0)
            c = KEY;
    addColours(images, name, board);
}

Canvas makeWalker()
{
    Canvas front(BOARD, BOARD, UNIT, CLEAR);
    paintFront(front);
    return front;
}

void paintPeople(Images &images)
{
    startStage("Painting the people");
    Canvas front = makeWalker();
    Canvas back(BOARD, BOARD, UNIT, CLEAR);
    paintBack(back);
    addBoard(images, "TexPerson", front);
    addBoard(images, "TexPersonBack", back);
}
