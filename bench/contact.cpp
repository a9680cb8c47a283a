// Shows for which step lengths the contact forces are stable: rolls the cube over the game's own
// land without drawing it, with the key Up held, and counts the runs in which the cube is thrown.
// The runs last a minute, each in another direction: first with equal steps, then with one longer
// step.
//
//     build/bench/bench/contact data
#include "cube.h"
#include "main.h"
#include "terrain.h"

#include <SDL.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <unistd.h>

constexpr int SHORTEST = 10, LONGEST = 70, APART = 5; // milliseconds of equal steps
constexpr int USUAL = 33;                             // milliseconds around a longer step
constexpr int STALLS[] = {125, 250, 500, 1000};       // milliseconds of a longer step
constexpr float STALL_TIMES[] = {10, 25, 40};         // seconds from the start of a run
constexpr int DIRECTIONS = 16;
constexpr float SECONDS = 60;
constexpr float THROWN =
    1000; // units above the ground, which no hill and no tank makes the cube reach

namespace
{
struct Stall // one longer step
{
    float time; // seconds from the start
    int milliseconds;
};
} // namespace

static uint8_t held[SDLK_LAST];

// Makes the land anew, without dents, and lays the cube on its middle. 0: there is no land.
static int begin(float heading)
{
    if (!initTerrain(&ter))
        return 0;
    initCube(&cb);
    cb.position = vectorInit(0, getHeightAt(&ter, 0, 0) + cb.size / 2, 0);
    cb.orientation = quaternionInit(1, 0, 0, 0);
    cb.momentum = cb.angularMomentum = cb.velocity = cb.angularVelocity = vectorInit(0, 0, 0);
    cb.heading = heading;
    return 1;
}

static void end()
{
    destroyCube(&cb);
    deleteTerrain(&ter);
}

static bool isThrown(int milliseconds, Stall stall)
{
    bool isStallOver = false;
    for (float t = 0; t < SECONDS; t += timeH)
    {
        const bool stalls = !isStallOver && t >= stall.time;
        isStallOver |= stalls;
        timeH = static_cast<float>((stalls ? stall.milliseconds : milliseconds) / 1000.0);
        handleKeyDown();
        updateCube(&cb, timeH);
        collideCubeTerrain();
        if (cb.position.y > getHeightAt(&ter, cb.position.x, cb.position.z) + THROWN)
            return true;
    }
    return false;
}

// The runs, one in each direction, in which the cube is thrown.
static int countThrown(int milliseconds, Stall stall)
{
    int thrown = 0;
    for (int i = 0; i < DIRECTIONS; ++i)
    {
        if (!begin(i * 360.0f / DIRECTIONS))
        {
            puts("No land: the folder of the images is missing");
            exit(EXIT_FAILURE);
        }
        thrown += isThrown(milliseconds, stall);
        end();
    }
    return thrown;
}

int main(int argc, char **argv)
{
    if (argc > 1 && chdir(argv[1]) != 0)
        return EXIT_FAILURE;
    if (!freopen("/dev/null", "w", stderr)) // start-up reports there
        return EXIT_FAILURE;
    keys = held;
    held[SDLK_UP] = 1;
    puts("equal steps    thrown");
    for (int milliseconds = SHORTEST; milliseconds <= LONGEST; milliseconds += APART)
        printf("%8d ms    %2d of %d\n", milliseconds, countThrown(milliseconds, {SECONDS, 0}),
               DIRECTIONS);
    puts("one longer step");
    for (int milliseconds : STALLS)
    {
        int thrown = 0;
        for (float time : STALL_TIMES)
            thrown += countThrown(USUAL, {time, milliseconds});
        printf("%8d ms    %2d of %d\n", milliseconds, thrown,
               DIRECTIONS * static_cast<int>(std::size(STALL_TIMES)));
    }
}
