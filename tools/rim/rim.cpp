// rim - tells whether the end of a land holds the cube and is no trap for it: rolls the cube over
// the land in a folder, without drawing, 32 ways at several sizes and steps, two minutes each.
//
//     build/check/tools/rim/rim data
//
// The mass is that of the start: growth adds less than a thousandth.
#include "cube.h"
#include "driver.h"
#include "main.h"
#include "terrain.h"

#include <SDL.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

constexpr int WAYS = 32;              // directions from the middle, and places on the rim
constexpr int STEPS[] = {10, 20, 33}; // milliseconds
constexpr float SECONDS = 120;        // of each run
constexpr float RIM = 70 * 25;        // units from the end of the land: what few live in

// Of the runs, what a land may show that is good to play on.
constexpr int MOST_LEAVE = 46, MOST_LEAVE_SMALL = 12, MOST_TRAPPED = 8;

static uint8_t held[SDLK_LAST];
static Terrain undented; // the land as it is at the start of each run
static Cube newCube;

// Lays the cube on the ground.
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

static bool isWithin(float margin) // units from the end of the land
{
    const float half = ter.worldWidth / 2 - margin;
    return mod(cb.position.x) < half && mod(cb.position.z) < half;
}

// 1 when the cube, rolled straight on from the middle, leaves the land.
static int leaves(int milliseconds, float size, int way)
{
    begin(0, 0, size, way * 360.0f / WAYS);
    memset(held, 0, sizeof(held));
    held[SDLK_UP] = 1;
    for (float t = 0; t < SECONDS && isWithin(0); t += timeH)
        step(milliseconds);
    return !isWithin(0);
}

// 1 when the cube, rolled toward the middle from a place on the rim, does not come off it.
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

// How many of the runs at one size fail; prints a row of them.
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

static bool holds(const char *what, int count, int most)
{
    printf("%-36s%4d, at most %2d: %s\n", what, count, most, count <= most ? "good" : "BAD");
    return count <= most;
}

static bool judgeLand()
{
    int small = 0, trapped = 0;
    for (float size : {60.0f, 100.0f, 175.0f})
        small += failures("leave", size, leaves);
    const int all = small + failures("leave", LARGEST_SIZE, leaves);
    for (float size : {60.0f, 100.0f, 140.0f, 175.0f})
        trapped += failures("are trapped", size, isTrapped);
    // Only whole blocks are drawn, up to the first sample of the one that holds the last sample.
    bool good = holds("samples that are never drawn", (ter.width - 1) % BLOCK_SIDE, 0);
    good &= holds("runs that leave, of small cubes", small, MOST_LEAVE_SMALL);
    good &= holds("runs that leave", all, MOST_LEAVE);
    good &= holds("runs that are trapped", trapped, MOST_TRAPPED);
    return good;
}

// Null, or what is wrong with the folder.
static const char *openLand(const char *folder)
{
    if (chdir(folder) != 0)
        return strerror(errno);
    if (!initTerrain(&ter) || !initTerrain(&undented))
        return "no land that the game accepts; started there, the game tells why";
    if (!(ter.worldWidth / 2 > RIM))
        return "the land is all rim: it wants more than 140 samples a side";
    initCube(&newCube);
    return nullptr;
}

static void closeLand()
{
    destroyCube(&newCube);
    deleteTerrain(&ter);
    deleteTerrain(&undented);
}

int main(int argc, char **argv)
{
    if (argc != 2)
    {
        fputs("usage: rim FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    const int complaints = dup(STDERR_FILENO);
    if (!freopen("/dev/null", "w", stderr)) // the game reports there what it loads and frees
        return EXIT_FAILURE;
    keys = held;
    const char *fault = openLand(argv[1]);
    if (fault)
        dprintf(complaints, "rim: %s: %s\n", argv[1], fault);
    const bool good = !fault && judgeLand();
    closeLand();
    close(complaints);
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
