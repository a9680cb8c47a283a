// rim - tells whether the edge of a land keeps the cube in, and whether the cube gets stuck there.
// Without a display, rim rolls the cube over the land in a folder: in 32 directions and from 32
// places, at several sizes and step lengths, for two minutes each.
//
//     build/check/tools/rim/rim data
//
// A cube of any size has the mass of a new cube here. In the game, growing adds less than a
// thousandth to the mass.
#include "cube.h"
#include "driver.h"
#include "folder.h"
#include "main.h"
#include "terrain.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

constexpr int WAYS = 32;              // directions from the middle, or places near the edge
constexpr int STEPS[] = {10, 20, 33}; // milliseconds
constexpr float SECONDS = 120;        // of each run
constexpr float RIM = 70 * 25; // units from the edge; people turn back at 2000, so few come here

// How many runs may leave the land, and how many may be trapped, on a land that is still good to
// play on. 384 runs start in the middle, 288 of them with cubes below the largest size. 384 further
// runs start near the edge.
constexpr int MOST_LEAVE = 46, MOST_LEAVE_SMALL = 12, MOST_TRAPPED = 8;

constexpr char MEND_SIDE[] = "Make the side of the maps a multiple of 25 plus one, such as 501, "
                             "801 or 1001 pixels.";
constexpr char MEND_CLIFF[] = "Put a cliff around the land that rises from 0 to 255 in one pixel, "
                              "24 pixels from the edges, with at least 12 flat pixels before it.";
constexpr char MEND_BRINK[] = "Straighten narrow bays and zigzags of the cliff, because they are "
                              "ramps. Round its corners off. Raise its upper edge where it is low.";
constexpr char MEND_TRAPS[] = "Within 70 pixels of the edges, take away what stops the cube on its "
                              "way back: a second cliff, a pit or a ledge.";

static uint8_t held[SDLK_LAST];
static Terrain undented; // the land without the dents of earlier runs
static Cube newCube;

// Lays the cube on the ground of the land without dents.
static void begin(float x, float z, float size, float heading)
{
    for (int i = 0; i < ter.width; ++i)
    {
        std::copy_n(undented.map[i], ter.height, ter.map[i]);
        std::copy_n(undented.normals[i], ter.height, ter.normals[i]);
    }
    cb = newCube;
    cb.size = cb.targetSize = size;
    setInertia(&cb);
    cb.position = vectorInit(x, getHeightAt(&ter, x, z) + size / 2, z);
    cb.momentum = cb.angularMomentum = cb.angularVelocity = vectorInit(0, 0, 0);
    cb.heading = heading;
}

static void step(int milliseconds)
{
    timeH = static_cast<float>(milliseconds / 1000.0);
    handleKeyDown();
    updateCube(&cb, timeH);
    collideCubeTerrain();
}

static bool isWithin(float margin) // units inside the edges of the land
{
    const float half = ter.worldWidth / 2 - margin;
    return mod(cb.position.x) < half && mod(cb.position.z) < half;
}

// 1 when a cube that is rolled straight on from the middle of the land leaves the land.
static int leaves(int milliseconds, float size, int way)
{
    begin(0, 0, size, way * 360.0f / WAYS);
    memset(held, 0, sizeof(held));
    held[SDLK_UP] = 1;
    for (float t = 0; t < SECONDS && isWithin(0); t += timeH)
        step(milliseconds);
    return !isWithin(0);
}

// 1 when a cube that is rolled toward the middle from a place near the edge does not get away from
// the edge.
static int isTrapped(int milliseconds, float size, int way)
{
    const Vector middle = vectorInit(0, 0, 0);
    const float depth = RIM * (way * 37 % WAYS + 0.5f) / WAYS;
    const float far = ter.worldWidth / 2 - std::max(depth, ter.scale * 2);
    const float along = far * (way / 4 * 2 - 7 + size / 175) / 8;
    const float end = way % 2 ? far : -far;
    const float x = way / 2 % 2 ? end : along, z = way / 2 % 2 ? along : end;
    begin(x, z, size, findDirection(vectorInit(x, 0, z), middle));
    for (float t = 0; t < SECONDS && !isWithin(RIM); t += timeH)
    {
        holdKeysToward(middle, held);
        step(milliseconds);
    }
    return !isWithin(RIM);
}

// Prints a row with the number of runs at one size that fail at each step length. Returns their
// sum.
static int failures(const char *what, float size, int (*fails)(int, float, int))
{
    int sum = 0;
    printf("%s at size %3.0f:", what, size);
    for (int milliseconds : STEPS)
    {
        int count = 0;
        for (int way = 0; way < WAYS; ++way)
            count += fails(milliseconds, size, way);
        printf("%4d with %d ms", count, milliseconds);
        sum += count;
    }
    printf(", of %d each\n", WAYS);
    fflush(stdout);
    return sum;
}

// Samples beyond the last whole block of the land, which the game never draws.
static int undrawnSamples()
{
    return (ter.width - 1) % BLOCK_SIDE;
}

static bool judgeLand()
{
    int small = 0, trapped = 0;
    for (float size : {60.0f, 100.0f, 175.0f})
        small += failures("leave the land", size, leaves);
    const int all = small + failures("leave the land", LARGEST_SIZE, leaves);
    for (float size : {60.0f, 100.0f, 140.0f, 175.0f})
        trapped += failures("are trapped", size, isTrapped);
    bool good = isAtMost("samples that are never drawn", undrawnSamples(), 0, MEND_SIDE);
    good &= isAtMost("runs of small cubes that leave", small, MOST_LEAVE_SMALL, MEND_CLIFF);
    good &= isAtMost("runs that leave the land", all, MOST_LEAVE, MEND_BRINK);
    good &= isAtMost("runs that are trapped", trapped, MOST_TRAPPED, MEND_TRAPS);
    return good;
}

// Loads the land of the current folder. Null, or what is wrong with the land.
static const char *loadLand()
{
    if (!initTerrain(&ter) || !initTerrain(&undented))
        return "there is not enough memory for this land";
    if (!(ter.worldWidth / 2 > RIM))
        return "all of this land lies near its edge; make its side at least 151 samples, better "
               "351";
    initCube(&newCube);
    return nullptr;
}

static void freeLand()
{
    destroyCube(&newCube);
    deleteTerrain(&ter);
    deleteTerrain(&undented);
}

static bool judgeFolder(const char *folder)
{
    if (openFolder(folder) != 0)
        return false;
    const char *fault = loadLand();
    if (fault)
        complain(folder, fault);
    const bool good = !fault && judgeLand();
    freeLand();
    return good;
}

int main(int argc, char **argv)
{
    if (argc != 2 || *argv[1] == '-')
    {
        fputs("usage: rim FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    startTool("rim");
    keys = held;
    return judgeFolder(argv[1]) ? EXIT_SUCCESS : EXIT_FAILURE;
}
