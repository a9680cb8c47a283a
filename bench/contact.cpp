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
constexpr int USUAL = 33;                             // milliseconds of all other steps
constexpr int STALLS[] = {125, 250, 500, 1000};       // milliseconds of a longer step
constexpr float STALL_TIMES[] = {10, 25, 40};         // seconds from the start of a run
constexpr int DIRECTIONS = 16;
constexpr float SECONDS = 60;
// Height above the ground, in units. Neither hills nor crushed tanks lift the cube that high.
constexpr float THROWN = 1000;

namespace
{
struct Stall // one longer step
{
    float time; // seconds from the start
    int milliseconds;
};
} // namespace

static uint8_t held[SDLK_LAST];

// Makes new land without dents and lays the cube on the middle of the land. Returns 1, or 0 if the
// land cannot be made.
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

// Runs the cube once in each direction. Returns the number of runs in which the cube is thrown.
static int countThrown(int milliseconds, Stall stall)
{
    int thrown = 0;
    for (int i = 0; i < DIRECTIONS; ++i)
    {
        if (!begin(i * 360.0f / DIRECTIONS))
        {
            puts("Cannot make the land. Is the argument the folder of the images?");
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
    {
        perror(argv[1]);
        return EXIT_FAILURE;
    }
    if (!freopen("/dev/null", "w", stderr)) // hides what start-up prints
    {
        puts("Cannot write to /dev/null");
        return EXIT_FAILURE;
    }
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
